#include "KestrelPlatform/Linux/ThermalLevels.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace kestrel {
namespace {

constexpr double kHysteresis = 5;
constexpr double kHottestPlausible = 150;
constexpr double kColdestPlausible = -273;
/// Before the kernel shuts the machine down.
constexpr double kCriticalMargin = 5;
/// Before critical, where the kernel does not say from where it throttles; and fair before serious.
constexpr double kStep = 10;
/// Throttling that begins so close to the shutdown is no early warning.
constexpr double kPassiveTooClose = 2;
constexpr int kSerious = 2;
constexpr double kSecondsToRise = 10;

/// The lowest trip point of a type. Those that can be programmed read 0 until somebody does.
std::optional<double> lowest(const std::vector<ThermalTrip>& trips, std::string_view type) {
  std::optional<double> result;
  for (const ThermalTrip& each : trips) {
    if (each.type != type || each.celsius <= 0 || !isPlausibleTemperature(each.celsius)) continue;
    result = std::min(result.value_or(each.celsius), each.celsius);
  }
  return result;
}

}  // namespace

bool isPlausibleTemperature(double celsius) {
  return celsius >= kColdestPlausible && celsius <= kHottestPlausible;
}

std::optional<ThermalEntries> thermalEntries(const std::vector<ThermalTrip>& trips) {
  const auto shutdown = lowest(trips, "critical");
  const auto hot = lowest(trips, "hot");
  auto passive = lowest(trips, "passive");
  if (shutdown && passive && *passive >= *shutdown - kPassiveTooClose) passive.reset();
  std::optional<double> critical = hot;
  if (!critical && shutdown) critical = *shutdown - kCriticalMargin;
  if (!critical && !passive) return std::nullopt;
  ThermalEntries entries;
  entries.critical = critical.value_or(std::numeric_limits<double>::infinity());
  entries.serious = entries.critical - kCriticalMargin;
  if (shutdown) entries.serious = std::min(entries.serious, *shutdown - kStep);
  if (passive) entries.serious = *passive;
  entries.fair = entries.serious - kStep;
  return entries;
}

int thermalLevel(const ThermalEntries& entries, double celsius, int previousLevel) {
  const std::array<double, 4> entry{-std::numeric_limits<double>::infinity(), entries.fair, entries.serious,
                                    entries.critical};
  for (int level = 3; level > 0; --level) {
    const double begin = entry[static_cast<std::size_t>(level)];
    if (celsius >= begin || (previousLevel >= level && celsius > begin - kHysteresis)) return level;
  }
  return 0;
}

int ThermalRise::update(int level, double elapsedSeconds) {
  secondsHot_ = level >= kSerious && last_ >= kSerious ? secondsHot_ + elapsedSeconds : 0;
  last_ = level;
  if (level <= reported_ || level < kSerious || secondsHot_ >= kSecondsToRise) {
    reported_ = level;
  } else {
    reported_ = std::max(reported_, kSerious - 1);
  }
  return reported_;
}

}  // namespace kestrel
