#include "KestrelCore/Policy/WakeDecision.h"

namespace kestrel {

WakeDecision WakeDecision::hold(std::string reason, std::int64_t activeAgentCount, bool requiresDeepHold) {
  return WakeDecision(Hold{std::move(reason), activeAgentCount, requiresDeepHold});
}

WakeDecision WakeDecision::release(std::string reason) {
  return WakeDecision(Release{std::move(reason)});
}

WakeDecision WakeDecision::blocked(SafetyBlock block) {
  return WakeDecision(Blocked{block});
}

std::string WakeDecision::statusDescription() const {
  if (const Hold* hold = asHold()) {
    const std::string count = std::to_string(hold->activeAgentCount);
    return "Active (" + count + (hold->activeAgentCount == 1 ? " working agent" : " working agents") +
           ") — " + hold->reason;
  }
  if (const Release* release = asRelease()) return "Sleep enabled — " + release->reason;
  return "Safety blocked: " + std::string(rawValue(asBlocked()->block));
}

}  // namespace kestrel
