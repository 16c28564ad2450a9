#pragma once

#include <chrono>
#include <thread>

#include "KestrelPlatform/Simulated/ManualExecutor.h"

namespace kestrel {

/// Runs what other threads bring to the executor until the condition holds, without moving its time.
template <typename Condition>
bool soon(ManualExecutor& executor, const Condition& condition) {
  for (int i = 0; i < 5'000 && !condition(); ++i) {
    executor.runPending();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return condition();
}

}  // namespace kestrel
