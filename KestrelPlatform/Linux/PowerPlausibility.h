#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrel {

// What makes sense of a battery's figures, whoever reports them.

inline constexpr std::string_view kMainsPower = "AC Power";
inline constexpr std::string_view kBatteryPower = "Battery Power";

/// Whole percent, truncated. A full battery may claim a little more than it holds; anything else outside of
/// 0 to 100, as firmware reports it for "unknown", is absent.
inline std::optional<std::int64_t> plausiblePercent(double percent) {
  if (!(percent >= 0 && percent <= 110)) return std::nullopt;
  return static_cast<std::int64_t>(std::min(percent, 100.0));
}

/// Whole minutes; absent below one minute and above 30 days.
inline std::optional<std::int64_t> plausibleMinutes(double seconds) {
  if (!(seconds >= 60 && seconds <= 30 * 24 * 3600.0)) return std::nullopt;
  return static_cast<std::int64_t>(seconds / 60);
}

}  // namespace kestrel
