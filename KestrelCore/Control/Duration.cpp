#include "KestrelCore/Control/Duration.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <fmt/format.h>

namespace kestrel {
namespace {

constexpr std::int64_t kMaximumSeconds = 365 * 86'400;

/// Takes a whole number of at most 9 digits from the front.
std::optional<std::int64_t> takeNumber(std::string_view& text) {
  std::int64_t number = 0;
  const char* begin = text.data();
  const auto [end, error] = std::from_chars(begin, begin + std::min<std::size_t>(text.size(), 9), number);
  if (error != std::errc() || end == begin || *begin == '-') return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - begin));
  return number;
}

}  // namespace

std::optional<double> parseDuration(std::string_view text) {
  constexpr std::string_view kUnits = "hms";
  constexpr std::int64_t kSecondsOf[] = {3600, 60, 1};
  std::int64_t total = 0;
  std::size_t nextUnit = 0;  // Units come once, largest first.
  const bool bare = !text.empty() && text.find_first_of(kUnits) == std::string_view::npos;
  do {
    const auto number = takeNumber(text);
    if (!number) return std::nullopt;
    const std::size_t unit = bare           ? 1
                             : text.empty() ? std::string_view::npos
                                            : kUnits.find(text.front(), nextUnit);
    if (unit == std::string_view::npos) return std::nullopt;
    if (!bare) text.remove_prefix(1);
    total += *number * kSecondsOf[unit];
    nextUnit = unit + 1;
  } while (!text.empty() && !bare);
  if (!text.empty() || total < 1 || total > kMaximumSeconds) return std::nullopt;
  return static_cast<double>(total);
}

std::string formatDuration(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::clamp(seconds, 0.0, 1e15));
  if (whole >= 3600) return fmt::format("{} h {:02} min", whole / 3600, whole / 60 % 60);
  if (whole >= 60) return fmt::format("{} min {:02} s", whole / 60, whole % 60);
  return fmt::format("{} s", whole);
}

}  // namespace kestrel
