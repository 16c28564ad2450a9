#include "KestrelCore/Presentation/KestrelVisualState.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {

std::string_view displayLabel(KestrelVisualState state) {
  constexpr std::array<std::string_view, 5> kLabels{"Idle", "Working", "Waiting", "Completed", "Error"};
  return kLabels[static_cast<std::size_t>(state)];
}

double defaultFrameDuration(KestrelVisualState state) {
  constexpr std::array<double, 5> kSeconds{1.0, 0.22, 0.45, 0.35, 1.0};
  return kSeconds[static_cast<std::size_t>(state)];
}

KestrelVisualState visualStateFrom(AgentState state) {
  switch (state) {
    case AgentState::working:
      return KestrelVisualState::working;
    case AgentState::waiting:
      return KestrelVisualState::waiting;
    case AgentState::completed:
      return KestrelVisualState::completed;
    case AgentState::error:
      return KestrelVisualState::error;
    case AgentState::unknown:
    case AgentState::idle:
    case AgentState::stale:
      break;
  }
  return KestrelVisualState::idle;
}

KestrelVisualState aggregateVisualState(const std::vector<AgentSessionPtr>& sessions,
                                        const WakeDecision& decision) {
  if (decision.isBlocked()) return KestrelVisualState::error;
  for (const auto state :
       {AgentState::working, AgentState::waiting, AgentState::error, AgentState::completed}) {
    if (std::ranges::any_of(sessions, [state](const auto& session) { return session->state == state; }))
      return visualStateFrom(state);
  }
  return KestrelVisualState::idle;
}

Json encode(KestrelVisualState state) {
  return rawValue(state);
}

KestrelVisualState decodeKestrelVisualState(const Json& value) {
  const auto state =
      value.is_string() ? fromRawValue<KestrelVisualState>(value.get<std::string>()) : std::nullopt;
  if (!state) throw DecodingError("not a visual state");
  return *state;
}

}  // namespace kestrel
