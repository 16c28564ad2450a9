#include "KestrelCore/Agents/HookEvent.h"

#include <limits>

#include "KestrelCore/Support/AsciiCase.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

const char* describe(HookEventError::Code code) {
  switch (code) {
    case HookEventError::Code::invalidJSON:
      return "The hook event is not valid JSON";
    case HookEventError::Code::payloadTooLarge:
      return "The hook payload or socket path is too large";
    case HookEventError::Code::missingRequiredFields:
      return "The hook event lacks a required field";
  }
  return "";
}

std::optional<std::int32_t> decodePid(const Json& object) {
  const auto pid = optionalInteger(object, "pid");
  using Limits = std::numeric_limits<std::int32_t>;
  if (!pid || *pid < Limits::min() || *pid > Limits::max()) return std::nullopt;
  return static_cast<std::int32_t>(*pid);
}

std::optional<std::int64_t> decodeTokenCount(const Json& object, std::string_view key) {
  const auto count = optionalInteger(object, key);
  if (!count || *count < 0 || *count > HookEvent::kMaximumTokenCount) return std::nullopt;
  return count;
}

}  // namespace

HookEventError::HookEventError(Code code) : std::runtime_error(describe(code)), code_(code) {}

std::string HookEvent::defaultSessionId(AgentType agent, std::optional<std::int32_t> pid) {
  return std::string(rawValue(agent)) + "-" + (pid ? std::to_string(*pid) : "default");
}

HookEvent HookEvent::parse(std::string_view jsonData, Date now) {
  const Json object = parseJsonObject(jsonData);
  HookEvent event;
  event.schema = optionalInteger(object, "schema").value_or(1);
  event.agent =
      fromRawValue<AgentType>(lowerCased(requiredString(object, "agent"))).value_or(AgentType::custom);
  event.state =
      fromRawValue<AgentState>(lowerCased(requiredString(object, "state"))).value_or(AgentState::unknown);
  event.pid = decodePid(object);
  event.sessionId = optionalString(object, "session_id").value_or("");
  if (event.sessionId.empty()) event.sessionId = defaultSessionId(event.agent, event.pid);
  const auto seconds = optionalDouble(object, "timestamp");
  event.timestamp = seconds ? Date::since1970(*seconds) : now;
  event.cwd = optionalString(object, "cwd");
  event.inputTokens = decodeTokenCount(object, "input_tokens");
  event.outputTokens = decodeTokenCount(object, "output_tokens");
  event.cachedTokens = decodeTokenCount(object, "cached_tokens");
  event.reasoningTokens = decodeTokenCount(object, "reasoning_tokens");
  event.model = optionalString(object, "model");
  event.turnId = optionalString(object, "turn_id");
  return event;
}

std::string HookEvent::toJSONData() const {
  Json object = {{"schema", schema},
                 {"agent", rawValue(agent)},
                 {"session_id", sessionId},
                 {"state", rawValue(state)},
                 {"timestamp", timestamp.secondsSince1970()}};
  setIfPresent(object, "pid", pid);
  setIfPresent(object, "cwd", cwd);
  setIfPresent(object, "input_tokens", inputTokens);
  setIfPresent(object, "output_tokens", outputTokens);
  setIfPresent(object, "cached_tokens", cachedTokens);
  setIfPresent(object, "reasoning_tokens", reasoningTokens);
  setIfPresent(object, "model", model);
  setIfPresent(object, "turn_id", turnId);
  return dumpJson(object);
}

}  // namespace kestrel
