#include "KestrelCore/Usage/JsonObjectStream.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <unistd.h>

#include "KestrelCore/Support/DecodingError.h"

namespace kestrel {
namespace {

constexpr std::size_t kBufferBytes = 256 * 1024;

[[noreturn]] void fail(const char* what) {
  throw DecodingError(what);
}

bool isSpace(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

/// What a scan for the ends of elements has to look at.
constexpr auto kStructural = [] {
  std::array<bool, 256> table{};
  for (const char c : {'"', '[', ']', '{', '}', ','}) table[static_cast<unsigned char>(c)] = true;
  return table;
}();

bool isStructural(char c) {
  return kStructural[static_cast<unsigned char>(c)];
}

/// Follows brackets and strings through the elements of one array or object.
class ElementScan {
 public:
  explicit ElementScan(std::size_t start) : next_(start) {}

  /// Goes on up to the closing bracket; false when it is not within the text.
  [[nodiscard]] bool findEnd(const char* text, std::size_t size) {
    while (next_ < size) {
      if (inString_) {
        skipString(text, size);
        continue;
      }
      const char c = text[next_++];
      if (!isStructural(c)) continue;
      if (c == '"') {
        inString_ = true;
      } else if (c == '[' || c == '{') {
        ++depth_;
      } else if (c == ',') {
        if (depth_ == 0) lastComma_ = next_ - 1;
      } else if (depth_-- == 0) {
        end_ = next_ - 1;
        return true;
      }
    }
    return false;
  }
  [[nodiscard]] std::size_t end() const { return end_; }
  /// Between two elements; 0 when there was none.
  [[nodiscard]] std::size_t lastComma() const { return lastComma_; }
  /// The text was moved towards the front.
  void moveBy(std::size_t bytes) { next_ -= bytes; }

 private:
  /// Up to behind the closing quote, or to the end of what is there.
  void skipString(const char* text, std::size_t size) {
    while (inString_ && next_ < size) {
      const auto* quote = static_cast<const char*>(std::memchr(text + next_, '"', size - next_));
      next_ = quote == nullptr ? size : static_cast<std::size_t>(quote - text) + 1;
      inString_ = quote == nullptr || isEscaped(quote);
    }
  }
  /// The quote that opens the string ends the search at the latest.
  static bool isEscaped(const char* quote) {
    const char* before = quote - 1;
    while (*before == '\\') --before;
    return (quote - before) % 2 == 0;
  }

  std::size_t next_;
  std::size_t depth_ = 0;
  bool inString_ = false;
  std::size_t lastComma_ = 0;
  std::size_t end_ = 0;
};

}  // namespace

JsonObjectStream::JsonObjectStream(int descriptor)
    : descriptor_(descriptor), buffer_(kBufferBytes + kPadding, '\0') {}

bool JsonObjectStream::fill() {
  std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(keep_),
            buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
  next_ -= keep_;
  end_ -= keep_;
  keep_ = 0;
  if (end_ + kPadding == buffer_.size()) {
    if (end_ > kMaximumElementBytes) fail("An element of the JSON data is too long");
    buffer_.resize(end_ * 2 + kPadding);
  }
  ssize_t count = 0;
  do {
    count = ::read(descriptor_, buffer_.data() + end_, buffer_.size() - kPadding - end_);
  } while (count < 0 && errno == EINTR);
  if (count < 0) fail("The file cannot be read");
  end_ += static_cast<std::size_t>(count);
  bytesRead_ += static_cast<std::uint64_t>(count);
  return count > 0;
}

std::optional<char> JsonObjectStream::peek() {
  for (;;) {
    while (next_ < end_ && isSpace(buffer_[next_])) ++next_;
    keep_ = next_;
    if (next_ < end_) return buffer_[next_];
    if (!fill()) return std::nullopt;
  }
}

void JsonObjectStream::expect(char wanted) {
  if (peek() != wanted) fail("The data is not a JSON object");
  ++next_;
}

bool JsonObjectStream::nextMember() {
  std::string_view unwanted;
  while (nextPiece(unwanted)) {
  }
  if (isFirstMember_) expect('{');
  if (peek() == '}') {
    ++next_;
    if (peek()) fail("Something follows the JSON object");
    return false;
  }
  if (!isFirstMember_) expect(',');
  isFirstMember_ = false;
  expect('"');
  name_.clear();
  takeString(name_);
  expect(':');
  kind_ = peek().value_or('\0');
  if (kind_ == '\0') fail("The JSON data is not complete");
  hasPieces_ = kind_ == '[' || kind_ == '{';
  isFirstPiece_ = true;
  scalar_.clear();
  if (!hasPieces_) takeScalar();
  return true;
}

void JsonObjectStream::takeString(std::string& text) {
  for (bool escaped = false;;) {
    keep_ = next_;
    if (next_ == end_ && !fill()) fail("The JSON data is not complete");
    const char c = buffer_[next_++];
    if (c == '"' && !escaped) return;
    escaped = c == '\\' && !escaped;
    text.push_back(c);
    if (text.size() > kMaximumElementBytes) fail("An element of the JSON data is too long");
  }
}

void JsonObjectStream::takeScalar() {
  if (kind_ == '"') {
    scalar_.push_back(buffer_[next_++]);
    takeString(scalar_);
    scalar_.push_back('"');
    return;
  }
  for (char c = kind_; c != ',' && c != '}'; c = buffer_[next_]) {
    scalar_.push_back(c);
    keep_ = ++next_;
    if (scalar_.size() > kMaximumElementBytes) fail("An element of the JSON data is too long");
    if (next_ == end_ && !fill()) fail("The JSON data is not complete");
  }
  while (!scalar_.empty() && isSpace(scalar_.back())) scalar_.pop_back();
}

bool JsonObjectStream::nextPiece(std::string_view& piece) {
  if (!hasPieces_) return false;
  const char close = kind_ == '[' ? ']' : '}';
  ElementScan scan(keep_ + 1);
  bool isLast = scan.findEnd(buffer_.data(), end_);
  while (!isLast && scan.lastComma() == 0) {
    const std::size_t moved = keep_;
    if (!fill()) fail("The JSON data is not complete");
    scan.moveBy(moved);
    isLast = scan.findEnd(buffer_.data(), end_);
  }
  const std::size_t start = keep_;
  const std::size_t end = isLast ? scan.end() : scan.lastComma();
  if (isLast && buffer_[end] != close) fail("The brackets of the JSON data do not match");
  hasPieces_ = !isLast;
  keep_ = isLast ? end + 1 : end;
  next_ = keep_;
  // The comma before the first element and the one behind the last become brackets.
  buffer_[start] = kind_;
  buffer_[end] = close;
  piece = std::string_view(buffer_).substr(start, end - start + 1);
  const bool isEmpty = std::all_of(piece.begin() + 1, piece.end() - 1, isSpace);
  if (isEmpty && !(isFirstPiece_ && isLast)) fail("The JSON data has a comma too many");
  isFirstPiece_ = false;
  return true;
}

}  // namespace kestrel
