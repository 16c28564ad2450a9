#pragma once

#include <memory>

#include "KestrelCore/Platform/GlobalKeyMonitor.h"
#include "KestrelCore/Platform/LogSink.h"

namespace kestrel {

/// Alt+Super+L on an X display, grabbed for whoever is in front, so that there is no local monitor. The grab
/// takes the plain combination, whatever the locks. Connects to the display that the environment names, and
/// waits for it, when the global monitor is added and when the keyboard's layout changed. Main thread; the
/// executor must outlive it and its monitors.
std::unique_ptr<GlobalKeyMonitor> makeLinuxGlobalKeyMonitor(Executor& executor,
                                                            std::shared_ptr<LogSink> sink);

}  // namespace kestrel
