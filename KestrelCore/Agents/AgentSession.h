#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KestrelCore/Agents/AgentState.h"
#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Agents/IntegrationType.h"
#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Usage/UsageMetrics.h"

namespace kestrel {

/// One tracked agent session.
struct AgentSession {
  /// Key in the session table: a hook's own session id, or `processSessionKey`.
  std::string id;
  AgentType agentType = AgentType::custom;
  AgentState state = AgentState::unknown;
  Date startedAt;
  /// Last event that changed or refreshed it.
  Date lastEventAt;
  std::optional<std::int32_t> pid;
  std::optional<std::string> cwd;
  /// Application that hosts the agent, for display.
  std::optional<std::string> hostAppName;
  std::optional<std::string> lastEventDescription;
  std::optional<UsageMetrics> usageMetrics;
  /// Channel that created the session.
  IntegrationType integrationType = IntegrationType::fallback;
  /// 0 to 1, how sure the state is: 1.0 from hooks, 0.6 from process scanning.
  double confidence = 0;

  [[nodiscard]] bool isWorking() const { return isActivelyWorking(state); }

  friend bool operator==(const AgentSession&, const AgentSession&) = default;
};

/// "proc-cursor-812": the key of a session found by process scanning.
std::string processSessionKey(AgentType agent, std::int32_t pid);

Json encode(const AgentSession& session);

/// Throws DecodingError.
AgentSession decodeAgentSession(const Json& object);

}  // namespace kestrel
