#include "KestrelCore/Presentation/BudgetModel.h"

#include <fmt/format.h>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Presentation/Words.h"
#include "KestrelCore/Usage/LowBudgetThreshold.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

BudgetGauge unknownGauge(std::string reason) {
  BudgetGauge gauge;
  gauge.value = "–";
  gauge.caption = std::move(reason);
  return gauge;
}

std::string confidenceWords(std::optional<FigureBasis> basis, double confidence) {
  if (!basis) return {};
  if (*basis != FigureBasis::estimated) return std::string(rawValue(*basis));
  return fmt::format("estimated, {} sure", percentWords(confidence * 100));
}

std::optional<LowBudgetLevel> levelOf(double percentRemaining) {
  const auto alert = LowBudgetThreshold::evaluate(percentRemaining, std::nullopt);
  return alert ? std::optional(alert->level) : std::nullopt;
}

BudgetGauge gauge(double percentRemaining, std::string caption) {
  BudgetGauge gauge;
  // Also turns a NaN into 0.
  gauge.remaining = std::min(std::max(0.0, percentRemaining), 100.0) / 100;
  gauge.value = percentWords(percentRemaining);
  gauge.caption = std::move(caption);
  gauge.level = levelOf(percentRemaining);
  return gauge;
}

BudgetGauge contextGauge(const ProviderBudgetReport& report) {
  const auto* known = report.context.asKnown();
  if (known == nullptr) return unknownGauge(*report.context.unavailableReason());
  const ContextBudget& budget = known->value;
  BudgetGauge result = gauge(budget.percentageRemaining(), "context left");
  result.detail = fmt::format("{} of {} tokens", formatTokenCompact(budget.tokensRemaining()),
                              formatTokenCompact(budget.contextWindow()));
  result.confidence = confidenceWords(report.contextBasis(), known->confidence);
  result.tooltip = fmt::format("{} of {} tokens left, {} used", groupedDigits(budget.tokensRemaining()),
                               groupedDigits(budget.contextWindow()), groupedDigits(budget.tokensConsumed()));
  return result;
}

BudgetGauge quotaGauge(const ProviderBudgetReport& report, Date now) {
  const auto* known = report.quota.asKnown();
  if (known == nullptr) return unknownGauge(*report.quota.unavailableReason());
  const AccountQuotaBudget& budget = known->value;
  const auto basis = report.quotaBasis(now);
  BudgetGauge result = gauge(budget.percentageRemaining, "quota left");
  if (basis == FigureBasis::stale) {
    result.detail = "reset since, no newer figure";
  } else if (budget.resetsAt) {
    result.detail = "resets in " + durationText(*budget.resetsAt - now);
  }
  result.confidence = confidenceWords(basis, known->confidence);
  result.tooltip =
      fmt::format("{:.1f} % left, {:.1f} % used", budget.percentageRemaining, budget.usedPercent);
  if (budget.windowMinutes) {
    result.tooltip += fmt::format(" of {}", durationText(static_cast<double>(*budget.windowMinutes) * 60));
  }
  if (budget.planType) result.tooltip += fmt::format(" · plan {}", *budget.planType);
  return result;
}

std::optional<std::string> costToday(const BudgetFacts& facts, AgentType agent) {
  if (!facts.today) return std::nullopt;
  const auto sums = facts.today->byAgent.find(std::string(rawValue(agent)));
  if (sums == facts.today->byAgent.end() || !sums->second.estimatedCostUSD) return std::nullopt;
  return CostBudget{*sums->second.estimatedCostUSD, true}.formattedCost() + " today";
}

BudgetCard card(const ProviderBudgetReport& report, const BudgetFacts& facts) {
  return {.key = std::string(rawValue(report.agentType)),
          .agentType = report.agentType,
          .name = std::string(displayName(report.agentType)),
          .model = report.modelId.value_or("Model unknown"),
          .context = contextGauge(report),
          .quota = quotaGauge(report, facts.now),
          .cost = report.cost ? report.cost->formattedCost() + " this session" : "Cost unavailable",
          .costToday = costToday(facts, report.agentType),
          .source = dotted({report.source, agoText(report.ageSeconds(facts.now))})};
}

}  // namespace

BudgetModel budgetModel(const BudgetFacts& facts) {
  BudgetModel model;
  for (const auto& [agent, report] : *facts.reports) model.cards.push_back(card(report, facts));
  if (model.cards.empty()) {
    model.emptyText = facts.today ? "No agent has reported its budget yet" : "Usage is being read";
  }
  model.sessionsEmptyText = facts.today ? "No session has used tokens yet" : "Usage is being read";
  model.chart = tokenChart(*facts.days, *facts.calendar);
  model.resetQuestion =
      "Forget all recorded usage?\nTokens, costs and sessions of every day are deleted and cannot be brought "
      "back. The agents' own records stay as they are; what they still hold may be read again.";
  return model;
}

BudgetFacts budgetFacts(AppCoordinator& coordinator, const LocalCalendar& calendar) {
  const UsageCoordinator& usage = coordinator.usage();
  return {.now = coordinator.clock().now(),
          .reports = &usage.latestBudgetReports().get(),
          .today = usage.todaySummary().get(),
          .days = &usage.tokensByDay().get(),
          .calendar = &calendar};
}

}  // namespace kestrel
