#include "KestrelCore/Presentation/AgentsModel.h"

#include <algorithm>
#include <fmt/format.h>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

std::string shortened(const std::string& directory, const std::string& home) {
  const bool isBelow = !home.empty() && directory.starts_with(home) &&
                       (directory.size() == home.size() || directory[home.size()] == '/');
  return isBelow ? fmt::format("~{}", directory.substr(home.size())) : directory;
}

std::string titleOf(const AgentSession& session) {
  const std::string directory = session.cwd.value_or("");
  const std::size_t end = directory.find_last_not_of('/');
  if (end == std::string::npos) return session.id;
  const std::size_t slash = directory.rfind('/', end);
  const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
  return directory.substr(start, end + 1 - start);
}

/// What is only seen is never certain, also where the family has no way of reporting of its own.
bool hasReported(const AgentSession& session) {
  return session.integrationType != IntegrationType::process || session.confidence >= 1;
}

std::string confidenceOf(const AgentSession& session) {
  if (session.confidence >= 1) return "Reported by the agent";
  const char* how = hasReported(session) ? "Reported" : "Seen as a process";
  return fmt::format("{} ({} sure)", how, percentWords(session.confidence * 100));
}

AgentSessionRow rowOf(const AgentSession& session, const AgentsFacts& facts) {
  return {.key = session.id,
          .title = titleOf(session),
          .state = session.state,
          .stateText = std::string(displayLabel(session.state)),
          .directory = shortened(session.cwd.value_or(""), facts.home),
          .age = "started " + agoText(facts.now - session.startedAt),
          .lastEvent =
              dotted({agoText(facts.now - session.lastEventAt), session.lastEventDescription.value_or("")}),
          .confidence = confidenceOf(session)};
}

std::vector<AgentHostRow> hostsOf(const AgentFamilyPresentation& family, const AgentsFacts& facts) {
  std::vector<AgentHostRow> hosts;
  for (const auto& host : family.hosts) {
    AgentHostRow& row = hosts.emplace_back(AgentHostRow{host.id, host.hostAppName, {}});
    for (const auto& session : host.sessions) row.sessions.push_back(rowOf(*session, facts));
  }
  return hosts;
}

std::string detectionOf(AgentType agent, const AgentFamilyPresentation* family) {
  const bool needsNothing = defaultIntegrationType(agent) == IntegrationType::process;
  if (family == nullptr) {
    return needsNothing ? "Will be found as a process; there is nothing to set up" : "No session seen yet";
  }
  const bool reports =
      std::ranges::any_of(family->sessions, [](const auto& session) { return hasReported(*session); });
  if (reports) return "Reports its sessions itself";
  return needsNothing ? "Found as a process; there is nothing to set up"
                      : "Found as a process only; set it up to see what it does";
}

void applyStatus(AgentCard& card, const AgentsFacts& facts) {
  const auto& result = *facts.inspection;
  if (!result) {
    card.statusText = facts.isChecking ? "Checking…" : "Not checked yet";
    return;
  }
  const auto found = result->statuses.find(card.agentType);
  if (found == result->statuses.end()) return;
  const IntegrationStatus& status = found->second;
  card.statusText = status.statusMessage;
  card.isInstalled = status.isInstalled;
  card.isIntegrationActive = status.isIntegrationActive;
  if (status.agentVersion) card.version = status.agentVersion->substr(0, status.agentVersion->find('\n'));
}

/// The state stands beside it.
std::string withoutState(std::string activity, const std::string& state) {
  const std::string suffix = " · " + state;
  if (activity.ends_with(suffix)) activity.resize(activity.size() - suffix.size());
  return activity;
}

AgentCard cardOf(AgentType agent, const AgentFamilyPresentation* family, const AgentsFacts& facts) {
  AgentCard card;
  card.key = rawValue(agent);
  card.agentType = agent;
  card.name = displayName(agent);
  card.detection = detectionOf(agent, family);
  card.canBeSetUp = defaultIntegrationType(agent) != IntegrationType::process;
  applyStatus(card, facts);
  if (family == nullptr) {
    card.stateText = "No session";
    return card;
  }
  card.state = family->aggregateState;
  card.stateText = displayLabel(family->aggregateState);
  card.activity = withoutState(family->summarySubtitle(), card.stateText);
  card.hosts = hostsOf(*family, facts);
  return card;
}

std::string checkedText(const AgentsFacts& facts) {
  if (facts.isChecking) return "Checking…";
  const auto& result = *facts.inspection;
  return result ? "Checked " + agoText(facts.now - result->at) : "Not checked yet";
}

/// Smaller comes first.
int rank(const AgentCard& card) {
  if (!card.hosts.empty()) return 0;
  return card.isInstalled ? 1 : 2;
}

}  // namespace

AgentsModel agentsModel(const AgentsFacts& facts) {
  AgentsModel model;
  for (const AgentType agent : allCases<AgentType>()) {
    const auto family = std::ranges::find(*facts.families, agent, &AgentFamilyPresentation::agentType);
    const bool isSeen = family != facts.families->end();
    if (agent == AgentType::custom && !isSeen) continue;
    model.cards.push_back(cardOf(agent, isSeen ? &*family : nullptr, facts));
  }
  std::ranges::stable_sort(model.cards, {}, rank);
  model.checkedText = checkedText(facts);
  model.canCheck = !facts.isChecking;
  return model;
}

AgentsFacts agentsFacts(AppCoordinator& coordinator, const AgentInspection& inspection) {
  return {.now = coordinator.clock().now(),
          .families = &coordinator.agentFamilies().get(),
          .inspection = &inspection.result().get(),
          .isChecking = inspection.isChecking().get(),
          .home = coordinator.directories().home.string()};
}

std::set<AgentType> seenAgents(const std::vector<AgentFamilyPresentation>& families) {
  std::set<AgentType> seen;
  for (const auto& family : families) seen.insert(family.agentType);
  return seen;
}

}  // namespace kestrel
