#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string_view>

namespace kestrel {

/// Takes a few members out of a JSON object and passes over the rest, whatever it is. Made for lines of other
/// programs' logs: a member of the wrong type counts as absent, of members given twice the last one counts,
/// and bytes that are not UTF-8 are replaced. Not thread-safe.
class JsonPicker {
 public:
  /// So many bytes behind a text must be readable, whatever they are.
  static constexpr std::size_t kPadding = 64;
  /// Counts of tokens that are negative or larger than any turn can have count as absent.
  static constexpr std::int64_t kMaximumTokens = 1'000'000'000'000;

  /// Names of members, joined by "." where they are nested: "message.usage". Each is known by its place in
  /// the list.
  explicit JsonPicker(std::initializer_list<std::string_view> paths);
  ~JsonPicker();
  JsonPicker(const JsonPicker&) = delete;
  JsonPicker& operator=(const JsonPicker&) = delete;

  /// False when the text is not one JSON object.
  [[nodiscard]] bool read(std::string_view text);

  // What the last text held.

  [[nodiscard]] bool isObject(std::size_t path) const;
  /// Valid until the next reading.
  [[nodiscard]] std::optional<std::string_view> string(std::size_t path) const;
  /// A whole number; 15.0 counts.
  [[nodiscard]] std::optional<std::int64_t> integer(std::size_t path) const;
  /// A finite number.
  [[nodiscard]] std::optional<double> number(std::size_t path) const;
  /// A whole number from 0 to kMaximumTokens.
  [[nodiscard]] std::optional<std::int64_t> tokens(std::size_t path) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kestrel
