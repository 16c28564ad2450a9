#include "KestrelCore/Presentation/TokenChart.h"

#include <algorithm>
#include <fmt/format.h>

#include "KestrelCore/Presentation/Words.h"
#include "KestrelCore/Usage/CostBudget.h"
#include "KestrelCore/Usage/UsageSummary.h"

namespace kestrel {
namespace {

/// So many bars share a label.
constexpr std::size_t kBarsPerLabel = 4;

/// What can be drawn of a count; an account may hold corrections below 0.
double height(std::int64_t tokens) {
  return static_cast<double>(std::max<std::int64_t>(tokens, 0));
}

double total(const DayTokens& day) {
  double sum = 0;
  for (const auto& [agent, tokens] : day.byAgent) sum += height(tokens);
  return sum;
}

std::string tooltip(const DayTokens& day, const std::string& name) {
  std::string text = name;
  for (const auto& [agent, tokens] : day.byAgent) {
    text += fmt::format("\n{}: {}", displayName(agent), groupedDigits(tokens));
  }
  text +=
      day.byAgent.empty() ? "\nNo tokens" : fmt::format("\nTotal: {} tokens", groupedDigits(day.totalTokens));
  if (day.estimatedCostUSD) text += " · " + CostBudget{*day.estimatedCostUSD, true}.formattedCost();
  return text;
}

/// The month only where it is the first label's, or another one.
std::string label(const std::vector<DayTokens>& days, std::size_t index, const LocalCalendar& calendar) {
  if (index + 1 == days.size()) return "today";
  if (index % kBarsPerLabel != 0 || index + 2 >= days.size()) return {};
  std::string name = shortDay(calendar.dayName(days[index].startsAt));
  if (index == 0) return name;
  const std::string before = shortDay(calendar.dayName(days[index - kBarsPerLabel].startsAt));
  const auto month = [](const std::string& day) { return day.substr(std::min(day.find(' '), day.size())); };
  return month(name) == month(before) ? name.substr(0, name.find(' ')) : name;
}

std::vector<TokenChartPiece> pieces(const DayTokens& day, double top) {
  std::vector<TokenChartPiece> pieces;
  double sum = 0;
  for (const auto& [agent, tokens] : day.byAgent) {
    if (tokens <= 0) continue;
    pieces.push_back({agent, sum / top, height(tokens) / top});
    sum += height(tokens);
  }
  return pieces;
}

}  // namespace

TokenChart tokenChart(const std::vector<DayTokens>& days, const LocalCalendar& calendar) {
  TokenChart chart;
  if (days.empty()) {
    chart.emptyText = chart.description = "Usage is being read";
    return chart;
  }
  double top = 0;
  for (const DayTokens& day : days) top = std::max(top, total(day));
  for (std::size_t i = 0; i < days.size(); ++i) {
    const std::string name = shortDay(calendar.dayName(days[i].startsAt));
    chart.bars.push_back({label(days, i, calendar), pieces(days[i], top), tooltip(days[i], name)});
    for (const auto& piece : chart.bars.back().pieces) chart.agents.push_back(piece.agentType);
  }
  std::ranges::sort(chart.agents);
  const auto repeated = std::ranges::unique(chart.agents);
  chart.agents.erase(repeated.begin(), repeated.end());
  if (chart.agents.empty()) {
    chart.emptyText = chart.description = fmt::format("No tokens in the last {} days", days.size());
    return chart;
  }
  // Every sum fits the account, so it fits here too.
  chart.topLabel = formatTokenCompact(static_cast<std::int64_t>(std::min(top, 9e18)));
  chart.description = fmt::format("Tokens per day for {} days, at most {}", days.size(), chart.topLabel);
  return chart;
}

}  // namespace kestrel
