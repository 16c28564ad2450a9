#include "KestrelCore/Usage/Providers/LogLineReader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "KestrelCore/Support/JsonObjectEnd.h"

namespace kestrel {

LogLineReader::LogLineReader() {
  resize(kBufferBytes);
}

bool LogLineReader::read(const std::string& path, Position& position, const TakeLine& take) {
  const UniqueDescriptor descriptor = openQuietly(path, O_NOFOLLOW);
  struct stat status {};
  if (!descriptor || ::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  const FileStamp file = stampOf(status);
  if (!file.isSameFile(position.file) || file.size < position.offset) position = Position{};
  position.file = file;
  firstLine_ = position.lines;
  begin_ = searched_ = end_ = 0;
  bool isRead = true;
  // What is written meanwhile is for the next time, so that no writer can keep this going.
  while (position.offset + (end_ - begin_) < file.size) {
    makeRoom(position);
    isRead = fill(descriptor.get(), position.offset + (end_ - begin_), file.size);
    if (!isRead) break;
    takeLines(position, take);
  }
  if (isRead) takeLastPiece(position, take);
  if (capacity_ > kBufferBytes) resize(kBufferBytes);
  return isRead;
}

/// False at an error, and where a file ends that was longer a moment ago.
bool LogLineReader::fill(int descriptor, std::uint64_t fileOffset, std::uint64_t fileSize) {
  const auto wanted = std::min<std::uint64_t>(capacity_ - end_, fileSize - fileOffset);
  ssize_t count = 0;
  do {
    count = ::pread(descriptor, buffer_.get() + end_, static_cast<std::size_t>(wanted),
                    static_cast<off_t>(fileOffset));
  } while (count < 0 && errno == EINTR);
  if (count <= 0) return false;
  end_ += static_cast<std::size_t>(count);
  return true;
}

/// Moves what is left to the front; for a line that fills the buffer makes it larger, or gives the line up.
void LogLineReader::makeRoom(Position& position) {
  if (begin_ > 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
    end_ -= begin_;
    searched_ -= begin_;
    begin_ = 0;
  }
  if (end_ < capacity_) return;
  if (capacity_ < kMaximumLineBytes) {
    resize(capacity_ * 2);
    return;
  }
  position.isInOverlongLine = true;
  position.offset += end_;
  searched_ = end_ = 0;
}

void LogLineReader::takeLines(Position& position, const TakeLine& take) {
  while (true) {
    const char* start = buffer_.get() + searched_;
    const auto* lineFeed = static_cast<const char*>(std::memchr(start, '\n', end_ - searched_));
    if (lineFeed == nullptr) break;
    const auto lineEnd = static_cast<std::size_t>(lineFeed - buffer_.get());
    hand({buffer_.get() + begin_, lineEnd - begin_}, position, take);
    position.offset += lineEnd + 1 - begin_;
    begin_ = searched_ = lineEnd + 1;
  }
  searched_ = end_;
  if (!position.isInOverlongLine) return;
  position.offset += end_ - begin_;
  begin_ = end_;
}

void LogLineReader::takeLastPiece(Position& position, const TakeLine& take) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::string_view piece(buffer_.get() + begin_, end_ - begin_);
  const auto first = piece.find_first_not_of(kBlanks);
  const auto last = piece.find_last_not_of(kBlanks);
  if (first == std::string_view::npos || piece[first] != '{' || piece[last] != '}') return;
  if (endOfJsonObject(piece) != last + 1) return;
  hand(piece, position, take);
  position.offset += piece.size();
}

void LogLineReader::hand(std::string_view text, Position& position, const TakeLine& take) {
  if (position.isInOverlongLine) {
    position.isInOverlongLine = false;
    ++position.lines;
    return;
  }
  if (text.empty()) return;
  const std::int64_t index = position.lines++;
  take({text, index, index - firstLine_});
}

void LogLineReader::resize(std::size_t capacity) {
  // Not filled: the pages are the system's until they are read into.
  std::unique_ptr<char[]> fresh(new char[capacity + JsonPicker::kPadding]);
  std::fill_n(fresh.get() + capacity, JsonPicker::kPadding, ' ');
  if (end_ > begin_) std::memcpy(fresh.get(), buffer_.get(), std::min(end_, capacity));
  buffer_ = std::move(fresh);
  capacity_ = capacity;
}

}  // namespace kestrel
