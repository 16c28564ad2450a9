#include "KestrelCore/Policy/WakePolicyEngine.h"

#include <cmath>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace kestrel {
namespace {

bool isBatteryTooLow(const PolicyEvaluationContext& context) {
  const auto& power = context.powerSource;
  if (!power.batteryPercent || power.isOnAC || power.isCharging) return false;
  const auto floor = context.config.batteryFloorPercent;
  if (!context.isCurrentlyBatteryBlocked) return *power.batteryPercent <= floor;
  return *power.batteryPercent < floor + context.config.batteryHysteresisPercent;
}

/// The first safety rule that fires, in order of precedence.
std::optional<SafetyBlock> safetyBlock(const PolicyEvaluationContext& context) {
  if (!context.config.masterEnabled) return SafetyBlock::masterDisabled;
  if (context.pauseUntil && context.now < *context.pauseUntil) return SafetyBlock::paused;
  if (context.thermalState == SystemThermalState::critical) return SafetyBlock::thermalCritical;
  if (context.config.onlyOnAC && !context.powerSource.isOnAC) return SafetyBlock::acDisconnected;
  if (isBatteryTooLow(context)) return SafetyBlock::batteryBelowFloor;
  return std::nullopt;
}

struct ActiveAgents {
  std::int64_t count = 0;
  /// Distinct, in code-point order.
  std::set<std::string_view> names;
};

ActiveAgents activeAgents(const PolicyEvaluationContext& context) {
  ActiveAgents active;
  if (!context.sessions) return active;
  for (const auto& [id, session] : *context.sessions) {
    if (!session->isWorking()) continue;
    if (context.now - session->lastEventAt > context.config.staleSessionTTLSeconds) continue;
    ++active.count;
    active.names.insert(displayName(session->agentType));
  }
  return active;
}

/// Whole seconds left of the grace period after the last agent stopped; absent when it is over.
std::optional<std::int64_t> remainingDebounce(const PolicyEvaluationContext& context) {
  if (!context.lastActiveAgentStoppedAt) return std::nullopt;
  const double elapsed = context.now - *context.lastActiveAgentStoppedAt;
  const double debounce = context.config.releaseDebounceSeconds;
  if (!(elapsed >= 0 && elapsed < debounce)) return std::nullopt;
  const double remaining = std::ceil(debounce - elapsed);
  // The settings store bounds the delay, so anything beyond is a programming fault.
  if (!(remaining < 9e18)) std::abort();
  return static_cast<std::int64_t>(remaining);
}

std::string joined(const std::set<std::string_view>& names) {
  std::string text;
  for (const auto name : names) {
    if (!text.empty()) text += ", ";
    text += name;
  }
  return text;
}

}  // namespace

WakeDecision WakePolicyEngine::evaluate(const PolicyEvaluationContext& context) const {
  if (const auto block = safetyBlock(context)) return WakeDecision::blocked(*block);
  const bool deep = context.config.deepLidProtectionEnabled;
  const ActiveAgents active = activeAgents(context);
  if (context.config.manualHoldEnabled)
    return WakeDecision::hold("Manual hold requested", active.count, deep);
  if (active.count > 0) return WakeDecision::hold(joined(active.names) + " working", active.count, deep);
  if (const auto remaining = remainingDebounce(context)) {
    return WakeDecision::hold("Release debounce (" + std::to_string(*remaining) + "s)", 0, deep);
  }
  return WakeDecision::release("No active agent sessions");
}

}  // namespace kestrel
