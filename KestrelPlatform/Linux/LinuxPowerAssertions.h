#pragma once

#include <memory>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// Assertions through the login manager and the desktop's own services, whichever there are. Made and
/// destroyed on the main thread; destruction gives everything back and no callback comes after it.
std::unique_ptr<PowerAssertions> makeLinuxPowerAssertions(Executor& mainExecutor,
                                                          std::shared_ptr<LogSink> sink,
                                                          std::shared_ptr<const Clock> clock);

}  // namespace kestrel
