#include "KestrelCore/Presentation/PopoverRow.h"

#include <algorithm>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <vector>

#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Usage/WholePercent.h"

namespace kestrel {
namespace {

constexpr std::string_view kSeparator = " · ";

struct Scarcest {
  LowBudgetMetricType metric = LowBudgetMetricType::context;
  double percent = 0;
};

std::optional<Scarcest> scarcestOf(const ProviderBudgetReport& report) {
  std::optional<Scarcest> scarcest;
  if (const auto* context = report.context.asKnown())
    scarcest = {LowBudgetMetricType::context, context->value.percentageRemaining()};
  const auto* quota = report.quota.asKnown();
  if (quota != nullptr && (!scarcest || quota->value.percentageRemaining < scarcest->percent))
    scarcest = {LowBudgetMetricType::quota, quota->value.percentageRemaining};
  return scarcest;
}

/// The report without what no longer holds.
ProviderBudgetReport withoutOldQuota(ProviderBudgetReport report, Date now) {
  if (report.quotaBasis(now) != FigureBasis::stale) return report;
  report.quota = BudgetMetric<AccountQuotaBudget>::unavailable("Quota was reset, not measured since");
  if (report.lowBudgetAlert && report.lowBudgetAlert->metricType == LowBudgetMetricType::quota)
    report.lowBudgetAlert.reset();
  return report;
}

std::vector<std::string> split(std::string_view line) {
  std::vector<std::string> parts;
  while (true) {
    const auto end = line.find(kSeparator);
    parts.emplace_back(line.substr(0, end));
    if (end == std::string_view::npos) return parts;
    line.remove_prefix(end + kSeparator.size());
  }
}

std::string summaryLine(const ProviderBudgetReport& report, AgentState state) {
  return isActivelyWorking(state) ? report.actionableSummaryLine() : report.idleSummaryLine();
}

std::optional<std::string> resetText(const ProviderBudgetReport& report, Date now) {
  const auto* quota = report.quota.asKnown();
  if (quota == nullptr || !quota->value.resetsAt) return std::nullopt;
  return "resets in " + roughDurationText(*quota->value.resetsAt - now);
}

std::string reasonsOf(const ProviderBudgetReport& report) {
  return fmt::format("{}{}{}", report.context.unavailableReason().value_or(""), kSeparator,
                     report.quota.unavailableReason().value_or(""));
}

/// The part that tells of the quota to the front, and when it is filled again after that.
void tellOfQuotaFirst(std::vector<std::string>& parts, const ProviderBudgetReport& report, Date now) {
  const auto quota = std::ranges::find_if(parts, [](const std::string& part) {
    return part.starts_with("Quota ") || part.ends_with("quota left");
  });
  if (quota == parts.end()) return;
  std::rotate(parts.begin(), quota, quota + 1);
  const auto reset = resetText(report, now);
  if (!reset) return;
  // Beside an alert's word there is no room for a figure that the gauge tells too.
  if (report.lowBudgetAlert) parts.front() = *reset;
  if (!report.lowBudgetAlert) parts.insert(parts.begin() + 1, *reset);
}

/// The summary line without what the gauge and the badge say already.
std::string budgetLine(const PopoverRow& row, const ProviderBudgetReport& report,
                       const std::optional<Scarcest>& scarcest, Date now) {
  if (!scarcest && !report.sessionUsage.effectiveTotalTokens() && !report.cost) return reasonsOf(report);
  auto parts = split(summaryLine(report, row.state));
  if (!row.alert.empty()) std::erase(parts, row.alert);
  if (scarcest) std::erase_if(parts, [](const std::string& part) { return part.ends_with("% remaining"); });
  if (scarcest && scarcest->metric == LowBudgetMetricType::quota) tellOfQuotaFirst(parts, report, now);
  return fmt::format("{}", fmt::join(parts, kSeparator));
}

std::string detailsOf(const AgentFamilyPresentation& family, const ProviderBudgetReport* report, Date now) {
  std::string text = fmt::format("{}: {}", family.displayName, displayLabel(family.aggregateState));
  for (const auto& host : family.hosts)
    text += fmt::format("\n{}: {} {}", host.hostAppName, host.sessions.size(),
                        host.sessions.size() == 1 ? "session" : "sessions");
  if (report == nullptr) return text;
  text += "\n" + summaryLine(*report, family.aggregateState);
  for (const auto& reason : {report->context.unavailableReason(), report->quota.unavailableReason()})
    if (reason) text += "\n" + *reason;
  if (const auto reset = resetText(*report, now)) text += "\nQuota " + *reset;
  if (report->lowBudgetAlert) text += "\n" + report->lowBudgetAlert->message;
  return text + "\nMeasured " + agoText(report->ageSeconds(now));
}

}  // namespace

PopoverRow popoverRow(const AgentFamilyPresentation& family, Date now) {
  PopoverRow row;
  row.id = family.id;
  row.agent = family.agentType;
  row.state = family.aggregateState;
  row.name = family.displayName;
  row.subtitle = family.summarySubtitle();
  if (!family.budgetReport) {
    row.budgetLine = "No usage reported";
    row.details = detailsOf(family, nullptr, now);
    return row;
  }
  const auto report = withoutOldQuota(*family.budgetReport, now);
  if (const auto& alert = report.lowBudgetAlert) {
    row.alert = displayWord(alert->level);
    row.alertTone = alert->level == LowBudgetLevel::warning ? Tone::warn : Tone::bad;
  }
  const auto scarcest = scarcestOf(report);
  if (scarcest) {
    row.left = scarcest->percent / 100;
    row.leftText = fmt::format("{} % {}", wholePercent(scarcest->percent),
                               scarcest->metric == LowBudgetMetricType::context ? "ctx" : "q");
    if (report.lowBudgetAlert && report.lowBudgetAlert->metricType == scarcest->metric)
      row.tone = row.alertTone;
  }
  row.budgetLine = budgetLine(row, report, scarcest, now);
  row.details = detailsOf(family, &report, now);
  return row;
}

}  // namespace kestrel
