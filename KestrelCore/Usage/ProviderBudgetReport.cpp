#include "KestrelCore/Usage/ProviderBudgetReport.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <vector>

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/OptionalFields.h"
#include "KestrelCore/Usage/UsageSummary.h"
#include "KestrelCore/Usage/WholePercent.h"

namespace kestrel {
namespace {

std::string joined(const std::vector<std::string>& parts) {
  return fmt::format("{}", fmt::join(parts, " · "));
}

std::string contextLeft(const ContextBudget& budget) {
  return formatTokenCompact(budget.tokensRemaining()) + " context left";
}

/// Absent when the session used less than one token.
std::optional<std::string> tokensUsed(const UsageMetrics& usage) {
  const auto total = usage.effectiveTotalTokens();
  if (!total || *total < 1) return std::nullopt;
  return formatTokenCompact(*total) + " tokens";
}

FigureBasis basisOf(double confidence) {
  return confidence < 1 ? FigureBasis::estimated : FigureBasis::measured;
}

}  // namespace

std::string ProviderBudgetReport::id() const {
  return fmt::format("{}_{}", rawValue(agentType), sessionId.value_or("global"));
}

std::string ProviderBudgetReport::actionableSummaryLine() const {
  std::vector<std::string> parts;
  const auto* knownQuota = quota.asKnown();
  if (knownQuota != nullptr && knownQuota->value.percentageRemaining <= 20) {
    parts.push_back(knownQuota->value.formattedQuotaRemaining());
    parts.emplace_back(displayWord(lowBudgetAlert ? lowBudgetAlert->level : LowBudgetLevel::warning));
    if (cost) parts.push_back(cost->formattedCost());
    return joined(parts);
  }
  if (const auto* known = context.asKnown()) {
    parts.push_back(contextLeft(known->value));
    parts.push_back(wholePercent(known->value.percentageRemaining()) + "% remaining");
  } else if (auto used = tokensUsed(sessionUsage)) {
    parts.push_back(*std::move(used));
  }
  if (knownQuota != nullptr) {
    parts.push_back(fmt::format("Quota {}% left", wholePercent(knownQuota->value.percentageRemaining)));
  }
  if (cost) parts.push_back(cost->formattedCost());
  return parts.empty() ? "Budget telemetry unavailable" : joined(parts);
}

std::string ProviderBudgetReport::idleSummaryLine() const {
  if (const auto* known = context.asKnown()) return "Last session: " + contextLeft(known->value);
  if (const auto used = tokensUsed(sessionUsage)) return "Last session: " + *used;
  return "Idle · Ready for sessions";
}

std::optional<FigureBasis> ProviderBudgetReport::contextBasis() const {
  return context.isAvailable() ? std::optional(basisOf(context.confidence())) : std::nullopt;
}

std::optional<FigureBasis> ProviderBudgetReport::quotaBasis(Date now) const {
  const auto* known = quota.asKnown();
  if (known == nullptr) return std::nullopt;
  if (known->value.resetsAt && *known->value.resetsAt <= now) return FigureBasis::stale;
  return basisOf(known->confidence);
}

std::optional<FigureBasis> ProviderBudgetReport::costBasis() const {
  if (!cost) return std::nullopt;
  return cost->isEstimated ? FigureBasis::estimated : FigureBasis::measured;
}

double ProviderBudgetReport::ageSeconds(Date now) const {
  return std::max(now - lastUpdated, 0.0);
}

Json encode(const ProviderBudgetReport& report) {
  Json object = {{"agentType", rawValue(report.agentType)},
                 {"context", encode(report.context)},
                 {"quota", encode(report.quota)},
                 {"sessionUsage", encode(report.sessionUsage)},
                 {"lastUpdated", report.lastUpdated.secondsSinceReferenceDate()},
                 {"source", report.source}};
  setIfPresent(object, "sessionId", report.sessionId);
  setIfPresent(object, "modelId", report.modelId);
  if (report.cost) object["cost"] = encode(*report.cost);
  if (report.lowBudgetAlert) object["lowBudgetAlert"] = encode(*report.lowBudgetAlert);
  return object;
}

ProviderBudgetReport decodeProviderBudgetReport(const Json& object) {
  const Json* cost = memberIfPresent(object, "cost");
  const Json* alert = memberIfPresent(object, "lowBudgetAlert");
  return {.agentType = requiredRawValue<AgentType>(object, "agentType"),
          .sessionId = stringIfPresent(object, "sessionId"),
          .modelId = stringIfPresent(object, "modelId"),
          .context = decodeBudgetMetric<ContextBudget>(requiredMember(object, "context")),
          .quota = decodeBudgetMetric<AccountQuotaBudget>(requiredMember(object, "quota")),
          .sessionUsage = decodeUsageMetrics(requiredMember(object, "sessionUsage")),
          .cost = cost == nullptr ? std::nullopt : std::optional(decodeCostBudget(*cost)),
          .lowBudgetAlert = alert == nullptr ? std::nullopt : std::optional(decodeLowBudgetAlert(*alert)),
          .lastUpdated = requiredDate(object, "lastUpdated"),
          .source = requiredString(object, "source")};
}

}  // namespace kestrel
