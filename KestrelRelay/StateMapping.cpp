#include "KestrelRelay/StateMapping.h"

#include <algorithm>
#include <string>

namespace kestrel {

namespace {

struct Mapping {
  std::string_view name;
  AgentState state;
};

// A sub-agent's stop is missing on purpose: it comes while the main turn still works.
constexpr Mapping kEvents[] = {
    {"UserPromptSubmit", AgentState::working},
    {"PreToolUse", AgentState::working},
    {"PostToolUse", AgentState::working},
    {"PostToolBatch", AgentState::working},
    {"BeforeAgent", AgentState::working},
    {"BeforeModel", AgentState::working},
    {"AfterModel", AgentState::working},
    {"BeforeTool", AgentState::working},
    {"AfterTool", AgentState::working},
    {"tool.execute.before", AgentState::working},
    {"tool.execute.after", AgentState::working},
    {"PermissionRequest", AgentState::waiting},
    {"SessionStart", AgentState::idle},
    {"Stop", AgentState::idle},
    {"StopFailure", AgentState::idle},
    {"Interrupt", AgentState::idle},
    {"AfterAgent", AgentState::idle},
    {"agent-turn-complete", AgentState::idle},
    {"session.idle", AgentState::idle},
    {"session.error", AgentState::idle},
    {"SessionEnd", AgentState::completed},
};

constexpr Mapping kNotifications[] = {
    {"permission_prompt", AgentState::waiting},
    {"ToolPermission", AgentState::waiting},
    {"idle_prompt", AgentState::idle},
};

constexpr Mapping kSessionStatuses[] = {
    {"busy", AgentState::working},
    {"idle", AgentState::idle},
};

template <std::size_t size>
std::optional<AgentState> find(const Mapping (&table)[size], const std::optional<std::string>& name) {
  const auto* const found =
      std::find_if(table, table + size, [&](const Mapping& m) { return m.name == name; });
  if (found == table + size) return std::nullopt;
  return found->state;
}

std::string lowercased(std::string_view text) {
  std::string result(text);
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

}  // namespace

AgentState stateNamed(std::string_view name) {
  return fromRawValue<AgentState>(lowercased(name)).value_or(AgentState::unknown);
}

AgentType agentNamed(std::string_view name) {
  return fromRawValue<AgentType>(lowercased(name)).value_or(AgentType::custom);
}

std::optional<AgentState> stateOfHook(const HookPayload& payload) {
  if (payload.event == "Notification") return find(kNotifications, payload.notification);
  if (payload.event == "session.status") return find(kSessionStatuses, payload.status);
  return find(kEvents, payload.event);
}

}  // namespace kestrel
