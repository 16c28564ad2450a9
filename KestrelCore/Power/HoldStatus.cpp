#include "KestrelCore/Power/HoldStatus.h"

#include <algorithm>
#include <utility>

namespace kestrel {
namespace {

/// Only these keep an idle machine awake; a display or sleep lock alone does not.
bool countsAsProtection(const HoldEvidence& evidence) {
  return evidence.kind == HoldKind::idle || evidence.kind == HoldKind::desktop;
}

}  // namespace

HoldStatus holdStatus(std::optional<Date> since, std::vector<HoldEvidence> evidence) {
  if (!since) return {};
  const bool inForce = std::ranges::any_of(evidence, [](const auto& entry) {
    return countsAsProtection(entry) && entry.state == HoldEvidenceState::held;
  });
  const bool lost =
      std::ranges::any_of(evidence, [](const auto& entry) { return entry.state == HoldEvidenceState::lost; });
  const HoldState state = inForce ? HoldState::inForce : lost ? HoldState::lost : HoldState::wanted;
  return {state, since, std::move(evidence)};
}

}  // namespace kestrel
