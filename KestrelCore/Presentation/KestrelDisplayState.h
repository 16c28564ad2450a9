#pragma once

#include <cstdint>
#include <optional>

#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Presentation/KestrelVisualState.h"

namespace kestrel {

/// What every surface shows of the moment; made at the end of each evaluation.
struct KestrelDisplayState {
  KestrelVisualState visualState = KestrelVisualState::idle;
  /// Sessions that work now.
  std::int64_t activeWorkingAgentCount = 0;
  /// All sessions of the table.
  std::int64_t totalActiveSessionsCount = 0;
  WakeDecision decision = WakeDecision::release("");
  /// 0 to 100; absent without a battery.
  std::optional<std::int64_t> batteryPercent;
  bool isCharging = false;
  bool isOnAC = false;
  /// The user's pause is in force.
  bool isPaused = false;
  /// Absent without a pause.
  std::optional<double> pauseRemainingSeconds;
  /// The lid-closed hold is seen to be in force.
  bool lidHoldActive = false;
  /// 0 when not holding.
  double elapsedProtectionSeconds = 0;

  friend bool operator==(const KestrelDisplayState&, const KestrelDisplayState&) = default;
};

}  // namespace kestrel
