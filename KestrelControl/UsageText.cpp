#include "KestrelControl/UsageText.h"

#include <fmt/format.h>

#include "KestrelControl/StatusText.h"
#include "KestrelCore/Control/Duration.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"

namespace kestrel {
namespace {

std::string costText(const std::optional<double>& dollars) {
  return dollars ? CostBudget{*dollars, true}.formattedCost() : "";
}

std::string countText(std::int64_t count, const char* one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

std::string withoutTrailingBlanks(std::string line) {
  line.erase(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

std::string agentName(const std::string& raw) {
  const auto agent = fromRawValue<AgentType>(raw);
  return agent ? std::string(displayName(*agent)) : printable(raw);
}

template <typename Summary>
std::string row(const std::string& title, const Summary& summary) {
  return withoutTrailingBlanks(
      fmt::format("{:<15}{:>7} tokens  {:<12}{}", title, formatTokenCompact(summary.totalTokens),
                  countText(summary.turnCount, "turn"), costText(summary.estimatedCostUSD)));
}

const Json& member(const Json& object, const char* key) {
  static const Json kNothing = Json::object();
  const auto found = object.find(key);
  return found != object.end() && found->is_object() ? *found : kNothing;
}

/// "measured", "estimated" or "stale", the most doubtful figure first.
std::string basisText(const Json& report) {
  for (const auto basis : {FigureBasis::stale, FigureBasis::estimated, FigureBasis::measured}) {
    for (const char* key : {"quotaBasis", "contextBasis"}) {
      if (optionalString(report, key) == rawValue(basis)) return std::string(rawValue(basis));
    }
  }
  return "unknown";
}

}  // namespace

std::string usageTodayText(const Json& usage) {
  std::string text;
  try {
    const UsageSummary today = decodeUsageSummary(member(usage, "today"));
    text = row("Today", today);
    for (const auto& [agent, summary] : today.byAgent) text += row("  " + agentName(agent), summary);
  } catch (const DecodingError&) {
    text = "Today          unknown\n";
  }
  for (const auto& [agent, report] : member(usage, "reports").items()) {
    text += fmt::format("{:<15}{} ({}, {} ago)\n", agentName(agent),
                        printable(optionalString(report, "summaryLine").value_or("")), basisText(report),
                        formatDuration(optionalDouble(report, "ageSeconds").value_or(0)));
  }
  for (const auto& [agent, alert] : member(usage, "alerts").items()) {
    text +=
        fmt::format("{:<15}{}\n", agentName(agent), printable(optionalString(alert, "message").value_or("")));
  }
  return text;
}

std::string usageDaysText(const std::vector<DayUsage>& days) {
  std::string text;
  for (const auto& day : days) text += row(day.day, day.summary);
  return text;
}

std::string usageSessionsText(const std::vector<SessionUsageRecord>& sessions, Date now) {
  std::string text;
  for (const auto& session : sessions) {
    text += withoutTrailingBlanks(
        fmt::format("{:<13}{:>7} tokens  {:<11}{:<17}{:<38}{}", displayName(session.agentType),
                    formatTokenCompact(session.totalTokens), costText(session.estimatedCostUSD),
                    formatDuration(now - session.lastActiveAt) + " ago", printable(session.id),
                    printable(session.modelId.value_or(""))));
  }
  return sessions.empty() ? "No sessions\n" : text;
}

}  // namespace kestrel
