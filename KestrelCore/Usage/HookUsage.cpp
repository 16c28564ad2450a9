#include "KestrelCore/Usage/HookUsage.h"

#include <algorithm>
#include <string>

#include "KestrelCore/Support/CheckedArithmetic.h"
#include "KestrelCore/Support/Uuid.h"
#include "KestrelCore/Usage/LowBudgetThreshold.h"
#include "KestrelCore/Usage/ModelRateCard.h"

namespace kestrel {
namespace {

constexpr const char* kSource = "relay-hook";
constexpr double kConfidence = 0.9;

/// The record carries no cache-write count.
ModelRateCard::TokenCounts countsOf(const HookEvent& event) {
  return {event.inputTokens, event.outputTokens, event.cachedTokens, event.reasoningTokens, std::nullopt};
}

BudgetMetric<ContextBudget> contextOf(const HookEvent& event) {
  using Metric = BudgetMetric<ContextBudget>;
  const auto consumed = checkedAdd(event.inputTokens.value_or(0), event.outputTokens.value_or(0));
  if (consumed < 1 && !event.model) return Metric::unavailable("Context unavailable");
  const auto window = ModelRateCard::contextWindow(event.model).value_or(kDefaultContextWindow);
  return Metric::known(ContextBudget(window, consumed), kConfidence, kSource);
}

}  // namespace

bool carriesTokens(const HookEvent& event) {
  return event.inputTokens || event.outputTokens || event.cachedTokens || event.reasoningTokens;
}

std::optional<UsageEvent> toUsageEvent(const HookEvent& event) {
  const auto total = checkedAdd(checkedAdd(event.inputTokens.value_or(0), event.outputTokens.value_or(0)),
                                event.reasoningTokens.value_or(0));
  if (total < 1 && !event.model) return std::nullopt;
  UsageEvent usage;
  usage.id = randomUuid();
  usage.agentType = event.agent;
  usage.sessionId = event.sessionId;
  usage.turnId = event.turnId;
  usage.modelId = event.model;
  usage.inputTokens = event.inputTokens;
  usage.outputTokens = event.outputTokens;
  usage.cachedTokens = event.cachedTokens;
  usage.reasoningTokens = event.reasoningTokens;
  usage.costEstimateUSD = ModelRateCard::estimateCost(event.model, countsOf(event));
  usage.timestamp = event.timestamp;
  usage.source = kSource;
  usage.deriveTotal();
  return usage;
}

ProviderBudgetReport toBudgetReport(const HookEvent& event, Date now) {
  ProviderBudgetReport report;
  report.agentType = event.agent;
  report.sessionId = event.sessionId;
  report.modelId = event.model;
  report.context = contextOf(event);
  report.sessionUsage.inputTokens = event.inputTokens;
  report.sessionUsage.outputTokens = event.outputTokens;
  report.sessionUsage.cachedTokens = event.cachedTokens;
  report.sessionUsage.reasoningTokens = event.reasoningTokens;
  report.sessionUsage.recordedAt = event.timestamp;
  if (const auto cost = ModelRateCard::estimateCost(event.model, countsOf(event)))
    report.cost = CostBudget{std::max(*cost, 0.0), true};
  if (const auto* context = report.context.asKnown()) {
    report.lowBudgetAlert = LowBudgetThreshold::evaluate(context->value.percentageRemaining(), std::nullopt);
  }
  report.lastUpdated = now;
  report.source = kSource;
  return report;
}

}  // namespace kestrel
