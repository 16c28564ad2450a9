#pragma once

#include <functional>

#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// While it lives, what Qt has to say goes to the log, and Qt's ending of the process for want of a display
/// calls `onDisplayLost` first, on whatever thread that happens: without a display at the start Qt aborts,
/// when one is lost later it exits. The callback is expected not to return; when it does, the process ends.
/// One object in a process at a time.
class DisplayGuard {
 public:
  DisplayGuard(Logger logger, std::function<void()> onDisplayLost);
  ~DisplayGuard();
  DisplayGuard(const DisplayGuard&) = delete;
  DisplayGuard& operator=(const DisplayGuard&) = delete;
};

}  // namespace kestrel
