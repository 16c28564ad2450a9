#pragma once

#include <memory>

#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// An executor on a portable event loop; the thread that calls `run()` is its thread.
class AsioExecutor final : public Executor {
 public:
  AsioExecutor();
  ~AsioExecutor() override;
  AsioExecutor(const AsioExecutor&) = delete;
  AsioExecutor& operator=(const AsioExecutor&) = delete;

  /// Runs tasks until `stop()`.
  void run();
  /// Makes `run()` return after the task under way; tasks still queued are dropped. From any thread.
  void stop();

  void post(Task task) override;
  [[nodiscard]] RegistrationPtr after(double delaySeconds, Task task) override;
  [[nodiscard]] RegistrationPtr repeat(double firstSeconds, double intervalSeconds, Task task) override;
  [[nodiscard]] RegistrationPtr watch(int descriptor, Readiness readiness, Task task) override;

 private:
  struct Loop;
  std::unique_ptr<Loop> loop_;
};

}  // namespace kestrel
