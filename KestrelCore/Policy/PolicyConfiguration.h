#pragma once

#include <cstdint>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// The settings that the policy weighs.
struct PolicyConfiguration {
  static constexpr std::int64_t kMinimumBatteryFloor = 5;
  static constexpr std::int64_t kMaximumBatteryFloor = 50;

  bool masterEnabled = true;
  /// Keep awake whether or not agents work.
  bool manualHoldEnabled = false;
  /// Percent at or below which protection stops, 5 to 50.
  std::int64_t batteryFloorPercent = 15;
  /// Percent above the floor that the level must reach before protection resumes, 1 to 10.
  std::int64_t batteryHysteresisPercent = 3;
  bool onlyOnAC = false;
  /// Seconds of grace after the last active agent stopped, at least 0.
  double releaseDebounceSeconds = 30;
  /// Seconds without an event after which a session no longer counts, at least 60.
  double staleSessionTTLSeconds = 900;
  /// Whether a hold also asks for the lid-closed hold.
  bool deepLidProtectionEnabled = true;

  /// The same with every value brought into its range.
  [[nodiscard]] PolicyConfiguration clamped() const;

  friend bool operator==(const PolicyConfiguration&, const PolicyConfiguration&) = default;
};

Json encode(const PolicyConfiguration& configuration);

/// Every key is required. Throws DecodingError.
PolicyConfiguration decodePolicyConfiguration(const Json& object);

}  // namespace kestrel
