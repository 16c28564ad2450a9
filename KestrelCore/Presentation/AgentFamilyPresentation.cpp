#include "KestrelCore/Presentation/AgentFamilyPresentation.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <set>
#include <tuple>
#include <utility>

namespace kestrel {
namespace {

using Sessions = std::vector<AgentSessionPtr>;

constexpr const char* kUnnamedHost = "Terminal";

bool areEqual(const Sessions& a, const Sessions& b) {
  return std::ranges::equal(a, b, [](const auto& x, const auto& y) { return *x == *y; });
}

bool reportsItself(const AgentSession& session) {
  return session.integrationType == IntegrationType::lifecycleHook ||
         session.integrationType == IntegrationType::plugin;
}

std::size_t countInState(const Sessions& sessions, AgentState state) {
  return static_cast<std::size_t>(
      std::ranges::count_if(sessions, [state](const auto& session) { return session->state == state; }));
}

std::set<std::int32_t> pidsOf(const Sessions& sessions,
                              const std::function<bool(const AgentSession&)>& counts) {
  std::set<std::int32_t> pids;
  for (const auto& session : sessions) {
    if (session->pid && counts(*session)) pids.insert(*session->pid);
  }
  return pids;
}

std::size_t countLogicalSessions(const Sessions& sessions, std::size_t processCount) {
  const bool anyReports =
      std::ranges::any_of(sessions, [](const auto& session) { return reportsItself(*session); });
  if (!anyReports) return processCount;
  const auto reported = pidsOf(sessions, reportsItself);
  return static_cast<std::size_t>(std::ranges::count_if(sessions, [&](const auto& session) {
    return reportsItself(*session) || !session->pid || !reported.contains(*session->pid);
  }));
}

AgentState aggregate(const Sessions& sessions) {
  for (const auto state :
       {AgentState::working, AgentState::waiting, AgentState::error, AgentState::completed}) {
    if (countInState(sessions, state) > 0) return state;
  }
  return AgentState::idle;
}

std::vector<AgentHostPresentation> hostsOf(const std::string& family, const Sessions& sessions) {
  std::map<std::string, Sessions> byName;
  for (const auto& session : sessions) {
    const auto& name = session->hostAppName;
    byName[name && !name->empty() ? *name : kUnnamedHost].push_back(session);
  }
  std::vector<AgentHostPresentation> hosts;
  for (auto& [name, hosted] : byName) {
    std::ranges::stable_sort(hosted, std::greater(), &AgentSession::startedAt);
    hosts.push_back({fmt::format("{}_{}", family, name), name, std::move(hosted)});
  }
  return hosts;
}

AgentFamilyPresentation familyOf(AgentType agentType, Sessions sessions) {
  AgentFamilyPresentation family;
  family.id = rawValue(agentType);
  family.displayName = displayName(agentType);
  family.agentType = agentType;
  family.aggregateState = aggregate(sessions);
  family.sessionCount = sessions.size();
  family.processCount = pidsOf(sessions, [](const auto&) { return true; }).size();
  family.logicalSessionCount = countLogicalSessions(sessions, family.processCount);
  family.workingSessionCount = countInState(sessions, AgentState::working);
  family.waitingSessionCount = countInState(sessions, AgentState::waiting);
  family.hosts = hostsOf(family.id, sessions);
  family.hostCount = family.hosts.size();
  family.sessions = std::move(sessions);
  return family;
}

}  // namespace

bool operator==(const AgentHostPresentation& a, const AgentHostPresentation& b) {
  return a.id == b.id && a.hostAppName == b.hostAppName && areEqual(a.sessions, b.sessions);
}

bool operator==(const AgentFamilyPresentation& a, const AgentFamilyPresentation& b) {
  const auto fields = [](const AgentFamilyPresentation& family) {
    return std::tie(family.id, family.displayName, family.agentType, family.aggregateState,
                    family.sessionCount, family.logicalSessionCount, family.workingSessionCount,
                    family.waitingSessionCount, family.hostCount, family.processCount, family.hosts,
                    family.budgetReport);
  };
  return fields(a) == fields(b) && areEqual(a.sessions, b.sessions);
}

std::string AgentFamilyPresentation::summarySubtitle() const {
  const auto processes = processCount;
  const auto sessionsAtWork = logicalSessionCount;
  if (aggregateState == AgentState::idle) {
    if (processes == 0) return {};
    return processes == 1 ? "1 process detected · Idle"
                          : fmt::format("{} processes detected · Idle", processes);
  }
  std::string active =
      sessionsAtWork > 1 ? fmt::format("{} sessions active", sessionsAtWork) : "1 session active";
  if (processes <= std::max<std::size_t>(sessionsAtWork, 1)) return active;
  return fmt::format("{} ({} processes)", active, processes);
}

std::string AgentFamilyPresentation::budgetSummaryLine() const {
  if (!budgetReport) return {};
  return isActivelyWorking(aggregateState) ? budgetReport->actionableSummaryLine()
                                           : budgetReport->idleSummaryLine();
}

std::optional<LowBudgetAlert> AgentFamilyPresentation::lowBudgetAlert() const {
  return budgetReport ? budgetReport->lowBudgetAlert : std::nullopt;
}

std::vector<AgentFamilyPresentation> AgentFamilyPresentation::buildFamilies(
    const std::vector<AgentSessionPtr>& sessions,
    const std::map<AgentType, ProviderBudgetReport>& budgetReports) {
  std::map<AgentType, Sessions> byAgent;
  for (const auto& session : sessions) byAgent[session->agentType].push_back(session);
  std::vector<AgentFamilyPresentation> families;
  for (auto& [agentType, ofAgent] : byAgent) {
    auto& family = families.emplace_back(familyOf(agentType, std::move(ofAgent)));
    if (const auto report = budgetReports.find(agentType); report != budgetReports.end())
      family.budgetReport = report->second;
  }
  return families;
}

}  // namespace kestrel
