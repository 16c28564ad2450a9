#pragma once

#include <vector>

#include "KestrelCore/Agents/AgentStateCoordinator.h"
#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

/// Puts what is known of the agents into a pipe, for the program that takes this one's place: it knows
/// nothing of those who have reported already, and would let the machine sleep while they work. The end to
/// read from stays open over the change. What does not fit is left out, those at rest
/// first; null when there can be no pipe.
UniqueDescriptor handOverSessions(const SessionTable& sessions);

/// Takes them out again. Lines that cannot be decoded are left out; none where the descriptor is no pipe.
std::vector<HookEvent> takeOverSessions(UniqueDescriptor pipe, Date now);

}  // namespace kestrel
