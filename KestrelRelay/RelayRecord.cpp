#include "KestrelRelay/RelayRecord.h"

#include <initializer_list>

#include "KestrelRelay/StateMapping.h"

namespace kestrel {

namespace {

// In bytes. Escaped, each byte takes up to six: all but the directory still fit together.
constexpr std::size_t kMaximumSessionIdLength = 1024;
constexpr std::size_t kMaximumDirectoryLength = 4096;
constexpr std::size_t kMaximumNameLength = 512;

std::optional<std::string> firstUsable(std::initializer_list<std::optional<std::string>> candidates,
                                       std::size_t maximumLength) {
  for (const auto& candidate : candidates) {
    if (candidate && candidate->size() <= maximumLength) return candidate;
  }
  return std::nullopt;
}

}  // namespace

HookEvent makeHookEvent(const RelayOptions& options, const HookPayload& payload, AgentState state,
                        const HookSurroundings& surroundings) {
  HookEvent event;
  event.agent = agentNamed(options.agent.value_or(""));
  event.state = state;
  event.timestamp = surroundings.now;
  event.pid = options.pid ? options.pid : surroundings.pid;
  event.sessionId = firstUsable({options.sessionId, payload.sessionId}, kMaximumSessionIdLength)
                        .value_or(HookEvent::defaultSessionId(event.agent, event.pid));
  // With a pid, a session of a family that is usually found by scanning counts as a process, which the next
  // scan does not find and ends. The identity above still tells one agent from another.
  if (defaultIntegrationType(event.agent) == IntegrationType::process) event.pid.reset();
  event.cwd = firstUsable({options.cwd, payload.cwd, surroundings.cwd}, kMaximumDirectoryLength);
  event.model = firstUsable({options.model, payload.model}, kMaximumNameLength);
  event.turnId = firstUsable({payload.turnId}, kMaximumNameLength);
  return event;
}

std::string encodeRecord(HookEvent event) {
  std::string record = event.toJSONData();
  if (record.size() < kMaximumRecordSize) return record;
  event.cwd.reset();
  return event.toJSONData();
}

}  // namespace kestrel
