#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "KestrelCore/Agents/AgentStateCoordinator.h"
#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// The mascot's mood.
enum class KestrelVisualState { idle, working, waiting, completed, error };

template <>
struct RawValues<KestrelVisualState> {
  static constexpr std::array<std::string_view, 5> table{"idle", "working", "waiting", "completed", "error"};
};

std::string_view displayLabel(KestrelVisualState state);

/// Whether the status icon moves in this state.
constexpr bool isAnimated(KestrelVisualState state) {
  return state != KestrelVisualState::idle && state != KestrelVisualState::error;
}

/// Seconds for which the status icon shows one frame.
double defaultFrameDuration(KestrelVisualState state);

/// One session's mood. Nothing is known of a stale session, so it rests.
KestrelVisualState visualStateFrom(AgentState state);

/// The mood of all sessions together: a safety block first, then whoever works, waits, failed, finished.
KestrelVisualState aggregateVisualState(const std::vector<AgentSessionPtr>& sessions,
                                        const WakeDecision& decision);

/// The raw value.
Json encode(KestrelVisualState state);
/// Throws DecodingError.
KestrelVisualState decodeKestrelVisualState(const Json& value);

}  // namespace kestrel
