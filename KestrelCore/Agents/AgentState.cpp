#include "KestrelCore/Agents/AgentState.h"

#include <cstddef>

namespace kestrel {

std::string_view displayLabel(AgentState state) {
  constexpr std::array<std::string_view, 7> kLabels{"Unknown",   "Idle",  "Working", "Waiting",
                                                    "Completed", "Error", "Stale"};
  return kLabels[static_cast<std::size_t>(state)];
}

}  // namespace kestrel
