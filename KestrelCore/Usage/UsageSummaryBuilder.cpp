#include "KestrelCore/Usage/UsageSummaryBuilder.h"

#include <algorithm>
#include <cmath>

namespace kestrel {
namespace {

using Contribution = UsageSummaryBuilder::Contribution;

bool addTo(std::int64_t& sum, std::int64_t value) {
  return !__builtin_add_overflow(sum, value, &sum);
}

/// False when something did not fit; the sums are spoilt then.
template <typename Sums>
bool addTo(Sums& sums, const Contribution& added) {
  const bool fits =
      addTo(sums.totalTokens, added.totalTokens) && addTo(sums.inputTokens, added.inputTokens) &&
      addTo(sums.outputTokens, added.outputTokens) && addTo(sums.cachedTokens, added.cachedTokens) &&
      addTo(sums.cacheWriteTokens, added.cacheWriteTokens) &&
      addTo(sums.reasoningTokens, added.reasoningTokens);
  if (!fits) return false;
  ++sums.turnCount;
  if (!added.costEstimateUSD) return true;
  sums.estimatedCostUSD = sums.estimatedCostUSD.value_or(0) + *added.costEstimateUSD;
  return std::isfinite(*sums.estimatedCostUSD);
}

}  // namespace

std::optional<Contribution> Contribution::of(const UsageEvent& event) {
  Contribution contribution{.agentType = event.agentType,
                            .sessionId = event.sessionId,
                            .totalTokens = event.totalTokens.value_or(0),
                            .inputTokens = event.inputTokens.value_or(0),
                            .outputTokens = event.outputTokens.value_or(0),
                            .cachedTokens = event.cachedTokens.value_or(0),
                            .cacheWriteTokens = event.cacheWriteTokens.value_or(0),
                            .reasoningTokens = event.reasoningTokens.value_or(0),
                            .costEstimateUSD = event.costEstimateUSD};
  if (event.totalTokens) return contribution;
  std::int64_t sum = contribution.inputTokens;
  if (!addTo(sum, contribution.outputTokens) || !addTo(sum, contribution.reasoningTokens))
    return std::nullopt;
  contribution.totalTokens = std::max<std::int64_t>(sum, 0);
  return contribution;
}

bool UsageSummaryBuilder::fits(const Contribution& contribution) const {
  AgentUsageSummary all = totals_;
  AgentUsageSummary agent = agents_[static_cast<std::size_t>(contribution.agentType)];
  return addTo(all, contribution) && addTo(agent, contribution);
}

bool UsageSummaryBuilder::add(const Contribution& contribution) {
  AgentUsageSummary all = totals_;
  AgentUsageSummary& slot = agents_[static_cast<std::size_t>(contribution.agentType)];
  AgentUsageSummary agent = slot;
  if (!addTo(all, contribution) || !addTo(agent, contribution)) return false;
  totals_ = all;
  slot = agent;
  if (!sessionIds_.contains(contribution.sessionId)) sessionIds_.emplace(contribution.sessionId);
  return true;
}

bool UsageSummaryBuilder::add(const UsageEvent& event) {
  const auto contribution = Contribution::of(event);
  return contribution && add(*contribution);
}

UsageSummary UsageSummaryBuilder::summary() const {
  UsageSummary summary;
  summary.totalTokens = totals_.totalTokens;
  summary.inputTokens = totals_.inputTokens;
  summary.outputTokens = totals_.outputTokens;
  summary.cachedTokens = totals_.cachedTokens;
  summary.cacheWriteTokens = totals_.cacheWriteTokens;
  summary.reasoningTokens = totals_.reasoningTokens;
  summary.estimatedCostUSD = totals_.estimatedCostUSD;
  summary.sessionCount = static_cast<std::int64_t>(sessionIds_.size());
  summary.turnCount = totals_.turnCount;
  for (const AgentType agent : allCases<AgentType>()) {
    const AgentUsageSummary& sums = agents_[static_cast<std::size_t>(agent)];
    if (sums.turnCount > 0) summary.byAgent.emplace(rawValue(agent), sums);
  }
  return summary;
}

}  // namespace kestrel
