#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// A function that the system calls through a block, shared by the block and the registration. The system may
/// have queued a call already when the registration ends, and the function may end its own registration.
class CallbackSlot {
 public:
  explicit CallbackSlot(std::function<void()> function) : function_(std::move(function)) {}

  /// Hold a `shared_ptr` of one's own over the call.
  void call() const {
    if (active_) function_();
  }
  void deactivate() { active_ = false; }
  [[nodiscard]] bool isActive() const { return active_; }

 private:
  const std::function<void()> function_;
  std::atomic<bool> active_{true};
};

}  // namespace kestrel
