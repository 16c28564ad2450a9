#pragma once

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Control/ControlProtocol.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {

// What is said to a running Kestrel, at the first place where one listens. Each waits 5 s at most at each
// step; Kestrel answers within milliseconds.

SocketExchange askKestrel(const Directories& directories, const ControlRequest& request);

/// Reports as an agent's hook does. False when nobody took it.
[[nodiscard]] bool reportToKestrel(const Directories& directories, const HookEvent& event);

}  // namespace kestrel
