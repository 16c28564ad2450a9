#pragma once

#include <cstdint>
#include <optional>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// The machine's power at one moment. The default is what a machine without any power-source information
/// counts as: on mains, without a battery, so that no battery rule ever fires.
struct PowerSourceSnapshot {
  /// 0 to 100; absent when there is no battery reading.
  std::optional<std::int64_t> batteryPercent;
  bool isCharging = false;
  bool isOnAC = true;
  bool isLowPowerMode = false;
  /// Absent unless the system reports a positive time to empty.
  std::optional<std::int64_t> timeRemainingMinutes;

  friend bool operator==(const PowerSourceSnapshot&, const PowerSourceSnapshot&) = default;
};

Json encode(const PowerSourceSnapshot& snapshot);

/// Throws DecodingError.
PowerSourceSnapshot decodePowerSourceSnapshot(const Json& object);

}  // namespace kestrel
