#include "KestrelCore/Usage/UsageJournal.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Usage/UsageDecoder.h"

namespace kestrel {
namespace {

constexpr std::size_t kBufferBytes = 256 * 1024;

/// Reads whole lines through one buffer; those that are too long are told as empty.
class LineReader {
 public:
  explicit LineReader(int descriptor) : descriptor_(descriptor) {}

  /// False at the end of the file, of which a piece without line feed is no line, and on an error.
  bool next(std::string_view& line) {
    std::size_t searched = 0;
    bool isTooLong = false;
    for (;;) {
      const auto* feed = static_cast<const char*>(
          std::memchr(buffer_.data() + start_ + searched, '\n', end_ - start_ - searched));
      if (feed != nullptr) return take(feed, isTooLong, line);
      if (end_ - start_ > UsageJournal::kMaximumLineBytes) {
        isTooLong = true;
        skipped_ += end_ - start_;
        start_ = end_;
      }
      searched = end_ - start_;
      if (!fill()) return false;
    }
  }
  /// Behind the last line feed.
  [[nodiscard]] std::uint64_t position() const { return position_; }
  [[nodiscard]] int error() const { return error_; }

 private:
  bool take(const char* feed, bool isTooLong, std::string_view& line) {
    const auto length = static_cast<std::size_t>(feed - (buffer_.data() + start_));
    line = isTooLong ? std::string_view() : std::string_view(buffer_).substr(start_, length);
    start_ += length + 1;
    position_ += std::exchange(skipped_, 0) + length + 1;
    return true;
  }
  bool fill() {
    buffer_.erase(0, start_);
    end_ -= start_;
    start_ = 0;
    buffer_.resize(end_ + kBufferBytes + UsageDecoder::kPadding);
    ssize_t count = 0;
    do {
      count = ::read(descriptor_, buffer_.data() + end_, kBufferBytes);
    } while (count < 0 && errno == EINTR);
    if (count < 0) error_ = errno;
    if (count <= 0) return false;
    end_ += static_cast<std::size_t>(count);
    return true;
  }

  int descriptor_;
  std::string buffer_;
  std::size_t start_ = 0;
  std::size_t end_ = 0;
  std::uint64_t position_ = 0;
  std::uint64_t skipped_ = 0;
  int error_ = 0;
};

}  // namespace

UsageJournal::UsageJournal(std::filesystem::path path, std::shared_ptr<const AtomicFileWriter> files)
    : path_(std::move(path)),
      files_(std::move(files)),
      reading_(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  struct stat status {};
  if (!reading_) {
    openError_ = errno == ENOENT || errno == ENOTDIR ? 0 : errno;
  } else if (::fstat(reading_.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    openError_ = EINVAL;
  }
}

UsageJournal::Replay UsageJournal::replay(const std::function<bool(const UsageEvent&)>& take) {
  Replay replay{.error = openError_};
  if (reading_ && openError_ == 0) {
    LineReader lines(reading_.get());
    UsageDecoder decoder;
    for (std::string_view line; lines.next(line);) {
      bool isGood = false;
      try {
        isGood = take(decoder.event(line));
      } catch (const DecodingError&) {
        isGood = false;
      }
      ++(isGood ? replay.events : replay.badLines);
    }
    replay.error = lines.error();
    size_ = lines.position();
  }
  reading_.reset();
  isUnread_ = replay.error != 0;
  isUsable_ = !isUnread_;
  return replay;
}

FileFailure UsageJournal::append(std::string_view lines) {
  if (!appending_.isOpen()) {
    auto failed = files_->openForAppending(path_, size_, appending_);
    isUsable_ = !failed;
    if (failed) return failed;
    // Somebody else shortened it: what it held is only in memory now.
    isUsable_ = appending_.size() == size_;
    if (!isUsable_) return "The journal " + path_.string() + " was changed";
  }
  auto failed = appending_.append(lines);
  isUsable_ = appending_.isOpen();
  if (isUsable_) size_ = appending_.size();
  return failed;
}

FileFailure UsageJournal::remove(const std::string& keptSuffix) {
  appending_.close();
  if (isUnread_) {
    if (!files_->moveAside(path_, path_.string() + keptSuffix)) return "Cannot move the journal aside";
  } else if (auto failed = files_->remove(path_)) {
    return failed;
  }
  isUsable_ = true;
  isUnread_ = false;
  size_ = 0;
  return std::nullopt;
}

}  // namespace kestrel
