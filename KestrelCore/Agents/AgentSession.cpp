#include "KestrelCore/Agents/AgentSession.h"

#include <utility>

#include "KestrelCore/Support/Json.h"

namespace kestrel {

std::string processSessionKey(AgentType agent, std::int32_t pid) {
  return "proc-" + std::string(rawValue(agent)) + "-" + std::to_string(pid);
}

Json encode(const AgentSession& session) {
  Json object = {{"id", session.id},
                 {"agentType", rawValue(session.agentType)},
                 {"state", rawValue(session.state)},
                 {"startedAt", session.startedAt.secondsSinceReferenceDate()},
                 {"lastEventAt", session.lastEventAt.secondsSinceReferenceDate()},
                 {"integrationType", rawValue(session.integrationType)},
                 {"confidence", session.confidence}};
  setIfPresent(object, "pid", session.pid);
  setIfPresent(object, "cwd", session.cwd);
  setIfPresent(object, "hostAppName", session.hostAppName);
  setIfPresent(object, "lastEventDescription", session.lastEventDescription);
  if (session.usageMetrics) object["usageMetrics"] = encode(*session.usageMetrics);
  return object;
}

AgentSession decodeAgentSession(const Json& object) {
  AgentSession session;
  session.id = requiredString(object, "id");
  session.agentType = requiredRawValue<AgentType>(object, "agentType");
  session.state = requiredRawValue<AgentState>(object, "state");
  session.startedAt = requiredDate(object, "startedAt");
  session.lastEventAt = requiredDate(object, "lastEventAt");
  session.integrationType = requiredRawValue<IntegrationType>(object, "integrationType");
  session.confidence = requiredDouble(object, "confidence");
  const auto pid = optionalInteger(object, "pid");
  if (pid && std::in_range<std::int32_t>(*pid)) session.pid = static_cast<std::int32_t>(*pid);
  session.cwd = optionalString(object, "cwd");
  session.hostAppName = optionalString(object, "hostAppName");
  session.lastEventDescription = optionalString(object, "lastEventDescription");
  const auto metrics = object.find("usageMetrics");
  if (metrics != object.end()) session.usageMetrics = decodeUsageMetrics(*metrics);
  return session;
}

}  // namespace kestrel
