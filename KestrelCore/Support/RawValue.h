#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace kestrel {

/// Gives an enumeration its raw strings. Specialise with `static constexpr std::array` `table` of raw values
/// in the declared order of the cases, which count from 0.
template <typename Enum>
struct RawValues;

template <typename Enum>
constexpr std::string_view rawValue(Enum value) {
  return RawValues<Enum>::table[static_cast<std::size_t>(value)];
}

/// Exact, case-sensitive; anything else yields no value.
template <typename Enum>
constexpr std::optional<Enum> fromRawValue(std::string_view raw) {
  for (std::size_t i = 0; i < RawValues<Enum>::table.size(); ++i) {
    if (RawValues<Enum>::table[i] == raw) return static_cast<Enum>(i);
  }
  return std::nullopt;
}

/// Every case, in the declared order.
template <typename Enum>
constexpr auto allCases() {
  std::array<Enum, RawValues<Enum>::table.size()> cases{};
  for (std::size_t i = 0; i < cases.size(); ++i) cases[i] = static_cast<Enum>(i);
  return cases;
}

}  // namespace kestrel
