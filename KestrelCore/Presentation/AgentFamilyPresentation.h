#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Agents/AgentStateCoordinator.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"

namespace kestrel {

/// The sessions of one family that one application hosts.
struct AgentHostPresentation {
  /// Family and host: "claude_Terminal".
  std::string id;
  /// "Terminal" for sessions that name no host.
  std::string hostAppName;
  /// The newest first.
  std::vector<AgentSessionPtr> sessions;

  /// Of the sessions, not of the pointers.
  friend bool operator==(const AgentHostPresentation& a, const AgentHostPresentation& b);
};

/// One row of a list of agents: a family with its sessions by host.
struct AgentFamilyPresentation {
  /// The agent's raw value.
  std::string id;
  std::string displayName;
  AgentType agentType = AgentType::custom;
  AgentState aggregateState = AgentState::idle;
  std::size_t sessionCount = 0;
  /// Distinct units of work: a process that a hook reports for is no session of its own.
  std::size_t logicalSessionCount = 0;
  std::size_t workingSessionCount = 0;
  std::size_t waitingSessionCount = 0;
  std::size_t hostCount = 0;
  /// Distinct process ids.
  std::size_t processCount = 0;
  /// By name.
  std::vector<AgentHostPresentation> hosts;
  std::vector<AgentSessionPtr> sessions;
  std::optional<ProviderBudgetReport> budgetReport;

  /// "2 sessions active (3 processes)", "1 process detected · Idle"; empty at rest without a process.
  [[nodiscard]] std::string summarySubtitle() const;
  /// Empty without a report.
  [[nodiscard]] std::string budgetSummaryLine() const;
  [[nodiscard]] std::optional<LowBudgetAlert> lowBudgetAlert() const;

  /// One row for each family that has sessions, in the order of the families.
  static std::vector<AgentFamilyPresentation> buildFamilies(
      const std::vector<AgentSessionPtr>& sessions,
      const std::map<AgentType, ProviderBudgetReport>& budgetReports);

  friend bool operator==(const AgentFamilyPresentation& a, const AgentFamilyPresentation& b);
};

}  // namespace kestrel
