#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "KestrelCore/Usage/Providers/FileStamp.h"
#include "KestrelCore/Usage/Providers/JsonPicker.h"

namespace kestrel {

/// Reads the lines that were added to a log of JSON lines. Needs one buffer, whatever the files' size; it
/// grows for a long line and shrinks again after the file. Not thread-safe.
class LogLineReader {
 public:
  static constexpr std::size_t kBufferBytes = std::size_t{256} << 10;
  /// A longer line is passed over without being kept in memory.
  static constexpr std::size_t kMaximumLineBytes = std::size_t{16} << 20;

  /// How far a file has been read; a fresh one stands at the beginning.
  struct Position {
    FileStamp file;
    std::uint64_t offset = 0;
    /// Lines before the offset, without empty ones.
    std::int64_t lines = 0;
    /// Whether the offset is inside a line that is being passed over.
    bool isInOverlongLine = false;
  };

  struct Line {
    /// Without its line feed and never empty. JsonPicker::kPadding bytes behind it are readable.
    std::string_view text;
    /// Counted from 0, without empty lines: in the file and in this reading.
    std::int64_t indexInFile = 0;
    std::int64_t indexInReading = 0;
  };
  using TakeLine = std::function<void(const Line&)>;

  LogLineReader();

  /// Hands out every line between the position and the file's present end, and moves the position behind
  /// them. A last piece without a line feed is a line when it is a whole JSON object, and else waits for its
  /// rest. A file that is shorter than before or another one under the name is read from its beginning; its
  /// first line has the index 0 in the file. False when it cannot be read.
  bool read(const std::string& path, Position& position, const TakeLine& take);

 private:
  [[nodiscard]] bool fill(int descriptor, std::uint64_t fileOffset, std::uint64_t fileSize);
  void makeRoom(Position& position);
  void takeLines(Position& position, const TakeLine& take);
  void takeLastPiece(Position& position, const TakeLine& take);
  void hand(std::string_view text, Position& position, const TakeLine& take);
  void resize(std::size_t capacity);

  /// Followed by the padding.
  std::unique_ptr<char[]> buffer_;
  std::size_t capacity_ = 0;
  /// Of the buffer: what is not handed out yet, and how far it was searched for a line feed.
  std::size_t begin_ = 0;
  std::size_t searched_ = 0;
  std::size_t end_ = 0;
  std::int64_t firstLine_ = 0;
};

}  // namespace kestrel
