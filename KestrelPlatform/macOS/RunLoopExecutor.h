#pragma once

#include <deque>
#include <optional>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelPlatform/macOS/CFRef.h"

namespace kestrel {

/// The main thread's run loop as an executor, so that the system's own run-loop sources are served beside its
/// tasks. Make and destroy it on the main thread; it must outlive its registrations.
class RunLoopExecutor final : public Executor {
 public:
  RunLoopExecutor();
  ~RunLoopExecutor() override;
  RunLoopExecutor(const RunLoopExecutor&) = delete;
  RunLoopExecutor& operator=(const RunLoopExecutor&) = delete;

  void post(Task task) override;
  [[nodiscard]] RegistrationPtr after(double delaySeconds, Task task) override;
  [[nodiscard]] RegistrationPtr repeat(double firstSeconds, double intervalSeconds, Task task) override;
  /// Null when the descriptor cannot be watched.
  [[nodiscard]] RegistrationPtr watch(int descriptor, Readiness readiness, Task task) override;

  void dropPostedTasks();

 private:
  static void perform(void* executor);
  std::optional<Task> takeTask();
  [[nodiscard]] std::size_t taskCount();

  Mutex mutex_{LockRank::leaf};
  std::deque<Task> tasks_ KESTREL_GUARDED_BY(mutex_);
  CFRef<CFRunLoopSourceRef> posted_;
};

}  // namespace kestrel
