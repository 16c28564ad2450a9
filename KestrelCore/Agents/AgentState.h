#pragma once

#include <array>
#include <string_view>

#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

enum class AgentState { unknown, idle, working, waiting, completed, error, stale };

template <>
struct RawValues<AgentState> {
  static constexpr std::array<std::string_view, 7> table{"unknown",   "idle",  "working", "waiting",
                                                         "completed", "error", "stale"};
};

std::string_view displayLabel(AgentState state);

/// True for `working` and `waiting`: an agent that waits for its user's answer still keeps the machine awake.
constexpr bool isActivelyWorking(AgentState state) {
  return state == AgentState::working || state == AgentState::waiting;
}

}  // namespace kestrel
