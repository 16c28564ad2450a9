#pragma once

#include <optional>
#include <string_view>

#include "KestrelCore/Agents/AgentState.h"
#include "KestrelCore/Agents/AgentType.h"
#include "KestrelRelay/HookPayload.h"

namespace kestrel {

/// The state's name that asks for the state to be taken from the hook's event.
inline constexpr std::string_view kAutomaticState = "auto";

/// In any case; `unknown` for other names.
AgentState stateNamed(std::string_view name);

/// In any case; `custom` for other names.
AgentType agentNamed(std::string_view name);

/// What the hook's event says about its session. Absent for events that say nothing, and for unknown ones.
std::optional<AgentState> stateOfHook(const HookPayload& payload);

}  // namespace kestrel
