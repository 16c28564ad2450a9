#include "KestrelCore/Presentation/StatusTooltip.h"

#include <fmt/format.h>

namespace kestrel {
namespace {

std::string headline(const WakeDecision& decision, std::int64_t workingCount) {
  if (const auto* hold = decision.asHold())
    return fmt::format("Kestrel: Awake ({} active) — {}", workingCount, hold->reason);
  if (const auto* blocked = decision.asBlocked())
    return fmt::format("Kestrel: Blocked — {}", rawValue(blocked->block));
  return fmt::format("Kestrel: Ready — {}", decision.asRelease()->reason);
}

/// What is left of its budget, or else what it does.
std::string familyLine(const AgentFamilyPresentation& family) {
  const std::string budget = family.budgetSummaryLine();
  const std::string text = budget.empty() ? family.summarySubtitle() : budget;
  return text.empty() ? family.displayName : fmt::format("{}: {}", family.displayName, text);
}

}  // namespace

std::string statusTooltip(const WakeDecision& decision, std::int64_t workingCount,
                          const std::vector<AgentFamilyPresentation>& families) {
  std::string text = headline(decision, workingCount);
  for (const auto& family : families) text.append("\n").append(familyLine(family));
  return text;
}

}  // namespace kestrel
