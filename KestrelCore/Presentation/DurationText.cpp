#include "KestrelCore/Presentation/DurationText.h"

#include <cmath>
#include <cstdint>
#include <fmt/format.h>

#include "KestrelCore/Control/Duration.h"

namespace kestrel {
namespace {

constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;
/// Beyond it, nothing that anybody waits for.
constexpr double kLongest = 1e12;
constexpr double kJustNow = 5;

double plausible(double seconds) {
  return seconds > 0 ? (seconds < kLongest ? seconds : kLongest) : 0;
}

}  // namespace

std::string durationText(double seconds) {
  return formatDuration(plausible(seconds));
}

std::string roughDurationText(double seconds) {
  const double exact = plausible(seconds);
  const auto nearest = [exact](std::int64_t unit) { return std::llround(exact / static_cast<double>(unit)); };
  if (exact < kMinute) return fmt::format("{} s", static_cast<std::int64_t>(exact));
  if (nearest(kMinute) < kHour / kMinute) return fmt::format("{} min", nearest(kMinute));
  if (nearest(kHour) < 2 * kDay / kHour) return fmt::format("{} h", nearest(kHour));
  return fmt::format("{} d", nearest(kDay));
}

std::string agoText(double seconds) {
  return plausible(seconds) < kJustNow ? "just now" : roughDurationText(seconds) + " ago";
}

}  // namespace kestrel
