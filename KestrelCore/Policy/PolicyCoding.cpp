#include "KestrelCore/Policy/PolicyConfiguration.h"
#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {

Json encode(const PolicyConfiguration& configuration) {
  return {{"masterEnabled", configuration.masterEnabled},
          {"manualHoldEnabled", configuration.manualHoldEnabled},
          {"batteryFloorPercent", configuration.batteryFloorPercent},
          {"batteryHysteresisPercent", configuration.batteryHysteresisPercent},
          {"onlyOnAC", configuration.onlyOnAC},
          {"releaseDebounceSeconds", configuration.releaseDebounceSeconds},
          {"staleSessionTTLSeconds", configuration.staleSessionTTLSeconds},
          {"deepLidProtectionEnabled", configuration.deepLidProtectionEnabled}};
}

PolicyConfiguration decodePolicyConfiguration(const Json& object) {
  PolicyConfiguration configuration;
  configuration.masterEnabled = requiredBool(object, "masterEnabled");
  configuration.manualHoldEnabled = requiredBool(object, "manualHoldEnabled");
  configuration.batteryFloorPercent = requiredInteger(object, "batteryFloorPercent");
  configuration.batteryHysteresisPercent = requiredInteger(object, "batteryHysteresisPercent");
  configuration.onlyOnAC = requiredBool(object, "onlyOnAC");
  configuration.releaseDebounceSeconds = requiredDouble(object, "releaseDebounceSeconds");
  configuration.staleSessionTTLSeconds = requiredDouble(object, "staleSessionTTLSeconds");
  configuration.deepLidProtectionEnabled = requiredBool(object, "deepLidProtectionEnabled");
  return configuration.clamped();
}

Json encode(const WakeDecision& decision) {
  if (const auto* hold = decision.asHold()) {
    return {{"hold",
             {{"reason", hold->reason},
              {"activeAgentCount", hold->activeAgentCount},
              {"requiresDeepHold", hold->requiresDeepHold}}}};
  }
  if (const auto* release = decision.asRelease()) return {{"release", {{"reason", release->reason}}}};
  return {{"blocked", {{"block", rawValue(decision.asBlocked()->block)}}}};
}

WakeDecision decodeWakeDecision(const Json& object) {
  if (const auto hold = object.find("hold"); hold != object.end()) {
    return WakeDecision::hold(requiredString(*hold, "reason"), requiredInteger(*hold, "activeAgentCount"),
                              requiredBool(*hold, "requiresDeepHold"));
  }
  if (const auto release = object.find("release"); release != object.end()) {
    return WakeDecision::release(requiredString(*release, "reason"));
  }
  if (const auto blocked = object.find("blocked"); blocked != object.end()) {
    return WakeDecision::blocked(requiredRawValue<SafetyBlock>(*blocked, "block"));
  }
  throw DecodingError("A decision must be one of hold, release or blocked");
}

}  // namespace kestrel
