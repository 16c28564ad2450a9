#include "KestrelCore/Presentation/OverviewModel.h"

#include <fmt/format.h>
#include <utility>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Presentation/StatusLine.h"
#include "KestrelCore/Presentation/Words.h"
#include "KestrelCore/Usage/CostBudget.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

constexpr const char* kDash = "–";
constexpr const char* kReading = "Usage is being read";

OverviewFigure heldToday(const OverviewFacts& facts) {
  const double seconds = facts.timeline->seconds(
      TimelineKind::held, facts.calendar->startOfDay(facts.popover.now), facts.popover.now);
  return {durationText(seconds), "held today", "Since midnight, as long as Kestrel ran"};
}

OverviewFigure activeAgents(const OverviewFacts& facts) {
  std::size_t count = 0;
  std::string names;
  for (const auto& family : *facts.popover.families) {
    const std::size_t active = family.workingSessionCount + family.waitingSessionCount;
    if (active > 0) names += fmt::format("{}{} {}", names.empty() ? "" : "\n", active, family.displayName);
    count += active;
  }
  return {fmt::format("{}", count), count == 1 ? "active agent" : "active agents", names};
}

OverviewFigure tokensToday(const OverviewFacts& facts) {
  if (!facts.popover.today) return {kDash, kReading, "", false};
  return {formatTokenCompact(facts.popover.today->totalTokens), "tokens today",
          groupedDigits(facts.popover.today->totalTokens) + " tokens"};
}

OverviewFigure costToday(const OverviewFacts& facts) {
  if (!facts.popover.today) return {kDash, kReading, "", false};
  const auto& cost = facts.popover.today->estimatedCostUSD;
  if (!cost && facts.popover.today->turnCount > 0) {
    return {kDash, "cost unavailable", "The prices of the models in use are not known", false};
  }
  const double amount = cost.value_or(0);
  return {CostBudget{amount, false}.formattedCost(), "cost today, estimated", fmt::format("${:.4f}", amount)};
}

/// Of the figure that runs low.
std::string alertDetail(const ProviderBudgetReport& report, LowBudgetMetricType metric, Date now) {
  const bool isQuota = metric == LowBudgetMetricType::quota;
  const auto basis = isQuota ? report.quotaBasis(now) : report.contextBasis();
  const auto quota = report.quota.value();
  std::string reset;
  if (isQuota && quota && quota->resetsAt) {
    reset = basis == FigureBasis::stale ? "has been reset since"
                                        : "resets in " + durationText(*quota->resetsAt - now);
  }
  // A stale figure was measured all the same.
  const bool isEstimated = basis == FigureBasis::estimated;
  return dotted({reset, (isEstimated ? "estimated " : "measured ") + agoText(report.ageSeconds(now))});
}

std::vector<OverviewAlert> alerts(const OverviewFacts& facts) {
  std::vector<OverviewAlert> alerts;
  for (const auto& [agent, report] : *facts.reports) {
    const auto& alert = report.lowBudgetAlert;
    if (!alert) continue;
    const AlertKey key{agent, alert->metricType, alert->level};
    if (facts.dismissed->contains(key)) continue;
    alerts.push_back({key, fmt::format("{}: {}", displayName(agent), alert->message),
                      alertDetail(report, alert->metricType, facts.popover.now)});
  }
  return alerts;
}

}  // namespace

OverviewModel overviewModel(const OverviewFacts& facts) {
  // What is in its way stands in the headline.
  const bool isInForce = facts.popover.hold.state == HoldState::inForce;
  return {headlineModel(facts.popover.display, facts.popover.hold),
          isInForce ? describeHold(facts.popover.hold) : "",
          timelineBand(*facts.timeline, *facts.calendar, facts.popover.now),
          {heldToday(facts), activeAgents(facts), tokensToday(facts), costToday(facts)},
          alerts(facts)};
}

OverviewFacts overviewFacts(AppCoordinator& coordinator, const LocalCalendar& calendar,
                            const DismissedAlerts& dismissed) {
  return {popoverFacts(coordinator, calendar), &coordinator.usage().latestBudgetReports().get(),
          &coordinator.timeline(), &calendar, &dismissed};
}

}  // namespace kestrel
