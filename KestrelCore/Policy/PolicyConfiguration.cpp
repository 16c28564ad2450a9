#include "KestrelCore/Policy/PolicyConfiguration.h"

#include <algorithm>

namespace kestrel {
namespace {

/// Also lifts a NaN to the minimum.
double atLeast(double minimum, double value) {
  return value > minimum ? value : minimum;
}

}  // namespace

PolicyConfiguration PolicyConfiguration::clamped() const {
  PolicyConfiguration result = *this;
  result.batteryFloorPercent = std::clamp(batteryFloorPercent, kMinimumBatteryFloor, kMaximumBatteryFloor);
  result.batteryHysteresisPercent = std::clamp<std::int64_t>(batteryHysteresisPercent, 1, 10);
  result.releaseDebounceSeconds = atLeast(0, releaseDebounceSeconds);
  result.staleSessionTTLSeconds = atLeast(60, staleSessionTTLSeconds);
  return result;
}

}  // namespace kestrel
