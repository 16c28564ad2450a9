#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// Picks a few strings out of a JSON object that arrives in pieces, without keeping the rest: neither the
/// size of the document nor its depth costs memory, and one that is cut off or malformed still yields what
/// stood before the fault. A value counts only once it is complete.
class JsonStringScanner {
 public:
  /// Longer values are passed over.
  static constexpr std::size_t kMaximumLength = 4096;

  /// `paths` are names of members joined by dots ("properties.status.type"), at most kMaximumDepth names
  /// each. They must outlive the scanner.
  explicit JsonStringScanner(std::span<const std::string_view> paths);

  void feed(std::string_view bytes);

  /// True once the object has been closed: further bytes are ignored. Never true of input that is no object.
  [[nodiscard]] bool isComplete() const { return state_ == State::complete; }

  /// The string at the path of that index; the last one where a name is repeated. Escapes are resolved; bytes
  /// that are not UTF-8 are kept as they are.
  [[nodiscard]] const std::optional<std::string>& value(std::size_t index) const { return values_[index]; }

 private:
  static constexpr std::size_t kMaximumDepth = 3;
  enum class State { beforeObject, structure, string, escape, unicode, complete, faulty };
  enum class Capture { none, name, value };
  struct Level {
    bool isObject = false;
    std::string name;
  };

  void feedBeforeObject(char c);
  void feedStructure(char c);
  void feedString(std::string_view bytes, std::size_t& position);
  void feedEscape(char c);
  void feedUnicode(char c);
  void open(bool isObject);
  void close();
  void beginString();
  void endString();
  void append(std::string_view bytes);
  void appendCodePoint(char32_t codePoint);
  void endSurrogate();
  [[nodiscard]] bool isTracked() const { return depth_ >= 1 && depth_ <= kMaximumDepth; }
  [[nodiscard]] std::optional<std::size_t> indexOfCurrentPath() const;

  std::span<const std::string_view> paths_;
  std::vector<std::optional<std::string>> values_;
  State state_ = State::beforeObject;
  std::size_t depth_ = 0;
  std::array<Level, kMaximumDepth> levels_;
  bool nameExpected_ = false;
  Capture capture_ = Capture::none;
  std::size_t captureIndex_ = 0;
  std::string captured_;
  bool tooLong_ = false;
  char32_t unicodeValue_ = 0;
  int unicodeDigits_ = 0;
  char32_t highSurrogate_ = 0;
};

}  // namespace kestrel
