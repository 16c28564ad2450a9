#pragma once

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// The version that every executable and report tells.
inline constexpr const char* kKestrelVersion = "0.4.0 (Beta)";

/// Everything that `kestrelctl status --json` tells: all top-level keys are always there, null when unknown,
/// and dates are ISO 8601. Main thread.
Json statusReport(AppCoordinator& coordinator);

/// The sessions, newest start first, as `status` lists them.
Json sessionsReport(AppCoordinator& coordinator);

/// A session's own coding, with its dates readable.
Json readableSession(const AgentSession& session);

/// What the helper says, with its dates readable.
Json readableHelperStatus(const DeepSleepStatus& status);

}  // namespace kestrel
