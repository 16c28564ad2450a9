#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// Takes a JSON object of any size apart in bounded memory: member by member, and a member's array or object
/// in pieces of whole elements, each a small JSON document of its own. Sees to the structure outside of the
/// pieces; whoever takes a piece has to parse it. Throws DecodingError when the file is not one JSON object,
/// cannot be read, or has an element of more than kMaximumElementBytes. Not thread-safe.
class JsonObjectStream {
 public:
  static constexpr std::size_t kMaximumElementBytes = std::size_t{1} << 20;
  /// So many bytes behind a piece are readable.
  static constexpr std::size_t kPadding = 64;

  /// Borrows a descriptor that stands at the beginning of the file.
  explicit JsonObjectStream(int descriptor);

  /// Goes to the next member, over what was not taken of the last. False at the end of the file.
  [[nodiscard]] bool nextMember();
  /// Its name as it is written: escapes stay.
  [[nodiscard]] const std::string& name() const { return name_; }
  /// The first character of its value: '[' and '{' come in pieces, any other as a whole.
  [[nodiscard]] char kind() const { return kind_; }
  /// The text of a value that is neither array nor object.
  [[nodiscard]] const std::string& scalar() const { return scalar_; }
  /// The next elements, in brackets of their own: `[1,2]`, `{"a":1}`. False when there are no more. Valid
  /// until the next call.
  [[nodiscard]] bool nextPiece(std::string_view& piece);
  /// Bytes of the file read so far.
  [[nodiscard]] std::uint64_t bytesRead() const { return bytesRead_; }

 private:
  /// The next character that is no white space, if any; stays before it.
  std::optional<char> peek();
  void expect(char wanted);
  /// Keeps what stands from `keep_` on and reads more. False at the end of the file.
  [[nodiscard]] bool fill();
  /// Appends everything up to a closing quote.
  void takeString(std::string& text);
  void takeScalar();

  int descriptor_;
  std::string buffer_;
  /// Of the buffer: from where it is still needed, where reading goes on, how far it is filled.
  std::size_t keep_ = 0;
  std::size_t next_ = 0;
  std::size_t end_ = 0;
  std::uint64_t bytesRead_ = 0;
  std::string name_;
  std::string scalar_;
  char kind_ = 0;
  bool isFirstMember_ = true;
  bool isFirstPiece_ = true;
  /// Whether pieces of the current member are left; `keep_` stands on the bracket or comma before the next.
  bool hasPieces_ = false;
};

}  // namespace kestrel
