#include "KestrelCore/Control/UsageReport.h"

#include <string>

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

Json basisOrNull(std::optional<FigureBasis> basis) {
  return basis ? Json(rawValue(*basis)) : Json(nullptr);
}

Json readableReport(const ProviderBudgetReport& report, Date now) {
  Json object = encode(report);
  object["lastUpdated"] = iso8601(report.lastUpdated);
  object["sessionUsage"]["recordedAt"] = iso8601(report.sessionUsage.recordedAt);
  const auto* quota = report.quota.asKnown();
  if (quota != nullptr && quota->value.resetsAt)
    object["quota"]["value"]["resetsAt"] = iso8601(*quota->value.resetsAt);
  object["summaryLine"] = report.actionableSummaryLine();
  object["contextBasis"] = basisOrNull(report.contextBasis());
  object["quotaBasis"] = basisOrNull(report.quotaBasis(now));
  object["costBasis"] = basisOrNull(report.costBasis());
  object["ageSeconds"] = report.ageSeconds(now);
  return object;
}

}  // namespace

Json usageReport(const UsageCoordinator& usage, Date now) {
  const auto& today = usage.todaySummary().get();
  if (!today) return nullptr;
  Json reports = Json::object();
  for (const auto& [agent, report] : usage.latestBudgetReports().get())
    reports[std::string(rawValue(agent))] = readableReport(report, now);
  Json alerts = Json::object();
  for (const auto& [agent, alert] : usage.lowBudgetAlerts().get())
    alerts[std::string(rawValue(agent))] = encode(alert);
  return {{"today", encode(*today)}, {"reports", std::move(reports)}, {"alerts", std::move(alerts)}};
}

Json usageSessionsReport(const std::vector<SessionUsageRecord>& sessions) {
  Json list = Json::array();
  for (const auto& session : sessions) {
    Json object = encode(session);
    object["startedAt"] = iso8601(session.startedAt);
    object["lastActiveAt"] = iso8601(session.lastActiveAt);
    list.push_back(std::move(object));
  }
  return {{"sessions", std::move(list)}};
}

Json usageDaysReport(const std::vector<DayUsage>& days) {
  Json list = Json::array();
  for (const auto& day : days) {
    Json object = encode(day.summary);
    object["day"] = day.day;
    object["startsAt"] = iso8601(day.startsAt);
    list.push_back(std::move(object));
  }
  return {{"days", std::move(list)}};
}

}  // namespace kestrel
