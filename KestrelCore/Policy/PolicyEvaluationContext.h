#pragma once

#include <memory>
#include <optional>

#include "KestrelCore/Agents/AgentStateCoordinator.h"
#include "KestrelCore/Policy/PolicyConfiguration.h"
#include "KestrelCore/Power/PowerSourceSnapshot.h"
#include "KestrelCore/Power/SystemThermalState.h"
#include "KestrelCore/Support/Date.h"

namespace kestrel {

/// Everything that one decision depends on.
struct PolicyEvaluationContext {
  PolicyConfiguration config;
  /// All tracked sessions, active or not; null counts as none.
  std::shared_ptr<const SessionTable> sessions;
  PowerSourceSnapshot powerSource;
  SystemThermalState thermalState = SystemThermalState::nominal;
  /// End of the user's pause.
  std::optional<Date> pauseUntil;
  std::optional<Date> lastActiveAgentStoppedAt;
  /// Whether the previous evaluation ended blocked for battery.
  bool isCurrentlyBatteryBlocked = false;
  /// The instant of evaluation.
  Date now;
};

}  // namespace kestrel
