#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KestrelCore/Presentation/AgentFamilyPresentation.h"
#include "KestrelCore/Presentation/AgentInspection.h"

namespace kestrel {

class AppCoordinator;

/// One session. Texts are ready to be shown.
struct AgentSessionRow {
  /// The session's id, which does not change.
  std::string key;
  /// The last part of its directory, else its id.
  std::string title;
  AgentState state = AgentState::unknown;
  std::string stateText;
  /// "~/p/kestrel"; empty when unknown.
  std::string directory;
  /// "started 12 min ago".
  std::string age;
  /// "4 s ago · tool call".
  std::string lastEvent;
  /// "Reported by the agent", "Seen as a process (60 % sure)".
  std::string confidence;

  friend bool operator==(const AgentSessionRow&, const AgentSessionRow&) = default;
};

/// The sessions that one application hosts.
struct AgentHostRow {
  /// Family and host, which does not change.
  std::string key;
  std::string name;
  /// The newest first.
  std::vector<AgentSessionRow> sessions;

  friend bool operator==(const AgentHostRow&, const AgentHostRow&) = default;
};

/// One agent family.
struct AgentCard {
  /// The agent's raw value.
  std::string key;
  AgentType agentType = AgentType::custom;
  std::string name;
  AgentState state = AgentState::idle;
  std::string stateText;
  /// "2 sessions active"; may be empty.
  std::string activity;
  /// "Hook active", "Not installed"; "Not checked yet" before the first check.
  std::string statusText;
  bool isInstalled = false;
  /// The agent reports, or needs no set-up and is seen.
  bool isIntegrationActive = false;
  /// Absent when unknown; one line.
  std::optional<std::string> version;
  /// How its sessions are learnt of: "Found as a process only".
  std::string detection;
  /// Whether there is something to set up.
  bool canBeSetUp = false;
  std::vector<AgentHostRow> hosts;

  friend bool operator==(const AgentCard&, const AgentCard&) = default;
};

struct AgentsFacts {
  Date now;
  const std::vector<AgentFamilyPresentation>* families = nullptr;
  /// Absent before the first check.
  const std::optional<AgentInspection::Result>* inspection = nullptr;
  bool isChecking = false;
  /// For shortening paths.
  std::string home;
};

struct AgentsModel {
  /// Each family but "Custom Agent", which is there only with sessions: those with sessions first, then those
  /// that are installed, then the others, in the order of the families within each.
  std::vector<AgentCard> cards;
  /// "Checked 2 min ago", "Checking…".
  std::string checkedText;
  bool canCheck = true;

  friend bool operator==(const AgentsModel&, const AgentsModel&) = default;
};

AgentsModel agentsModel(const AgentsFacts& facts);

/// The facts of the moment. Main thread; good until the next evaluation.
AgentsFacts agentsFacts(AppCoordinator& coordinator, const AgentInspection& inspection);

/// The agents that have a session, as a check wants them.
std::set<AgentType> seenAgents(const std::vector<AgentFamilyPresentation>& families);

}  // namespace kestrel
