#pragma once

#include <memory>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/UserNotifications.h"
#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// The desktop's notification service, which the session bus starts where it is installed. Nobody has to
/// permit notifications there. Connects at the first use. Main thread; the executor must outlive it.
std::unique_ptr<UserNotifications> makeLinuxUserNotifications(Executor& executor,
                                                              std::shared_ptr<LogSink> sink);

}  // namespace kestrel
