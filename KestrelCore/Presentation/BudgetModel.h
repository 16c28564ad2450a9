#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Presentation/TokenChart.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"
#include "KestrelCore/Usage/UsageSummary.h"

namespace kestrel {

class AppCoordinator;

/// How much is left of something.
struct BudgetGauge {
  /// What is left, 0 to 1; absent when unknown, which is no empty gauge.
  std::optional<double> remaining;
  /// "78 %"; a dash when unknown.
  std::string value;
  /// "context left"; when unknown, the reason: "Quota unavailable".
  std::string caption;
  /// "156k of 200k tokens", "resets in 2 h 10 min"; may be empty.
  std::string detail;
  /// "estimated, 80 % sure"; empty when unknown.
  std::string confidence;
  /// The exact figures; empty when unknown.
  std::string tooltip;
  /// Absent while enough is left.
  std::optional<LowBudgetLevel> level;

  friend bool operator==(const BudgetGauge&, const BudgetGauge&) = default;
};

/// What is left for one agent.
struct BudgetCard {
  /// The agent's raw value.
  std::string key;
  AgentType agentType = AgentType::custom;
  std::string name;
  /// Of the last session; "Model unknown" otherwise.
  std::string model;
  BudgetGauge context;
  BudgetGauge quota;
  /// "$1.20 est. this session"; "Cost unavailable".
  std::string cost;
  /// "$3.10 est. today"; absent when nothing is known of today.
  std::optional<std::string> costToday;
  /// Where the figures are from and how old: "claude-project-log · 20 s ago".
  std::string source;

  friend bool operator==(const BudgetCard&, const BudgetCard&) = default;
};

struct BudgetFacts {
  Date now;
  const std::map<AgentType, ProviderBudgetReport>* reports = nullptr;
  std::optional<UsageSummary> today{};
  const std::vector<DayTokens>* days = nullptr;
  const LocalCalendar* calendar = nullptr;
};

struct BudgetModel {
  /// In the order of the agents; those with a report.
  std::vector<BudgetCard> cards;
  /// What to say when there is no card.
  std::string emptyText;
  TokenChart chart;
  /// What to say when there is no session.
  std::string sessionsEmptyText;
  /// What Reset asks: what is lost.
  std::string resetQuestion;

  friend bool operator==(const BudgetModel&, const BudgetModel&) = default;
};

BudgetModel budgetModel(const BudgetFacts& facts);

/// The facts of the moment. Main thread; good until the next evaluation.
BudgetFacts budgetFacts(AppCoordinator& coordinator, const LocalCalendar& calendar);

}  // namespace kestrel
