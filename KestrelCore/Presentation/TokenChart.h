#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KestrelCore/Support/LocalCalendar.h"
#include "KestrelCore/Usage/UsageSeries.h"

namespace kestrel {

/// One agent's part of a bar. Heights are parts of the chart's, 0 to 1.
struct TokenChartPiece {
  AgentType agentType = AgentType::custom;
  double bottom = 0;
  double height = 0;

  friend bool operator==(const TokenChartPiece&, const TokenChartPiece&) = default;
};

/// One day.
struct TokenChartBar {
  /// "8 Nov", "12", "today"; empty for days that need no label.
  std::string label;
  /// From the bottom, in the order of the agents.
  std::vector<TokenChartPiece> pieces;
  /// The day and the exact values, one line each.
  std::string tooltip;

  friend bool operator==(const TokenChartBar&, const TokenChartBar&) = default;
};

/// Tokens by day, stacked by agent.
struct TokenChart {
  /// The oldest first.
  std::vector<TokenChartBar> bars;
  /// The agents that occur, in their order.
  std::vector<AgentType> agents;
  /// What the full height stands for: "1.2M"; empty when nothing was used.
  std::string topLabel;
  /// What to say in place of bars; empty when there are some.
  std::string emptyText;
  /// The same for those who cannot see it.
  std::string description;

  friend bool operator==(const TokenChart&, const TokenChart&) = default;
};

/// An empty list of days means that they are not known yet.
TokenChart tokenChart(const std::vector<DayTokens>& days, const LocalCalendar& calendar);

}  // namespace kestrel
