#pragma once

#include <memory>

#include "KestrelCore/Support/Executor.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

/// The application's event loop as an executor. Made and destroyed on the main thread while the application
/// object exists; that thread is its thread. A delay beyond 24 days counts as 24 days.
class QtExecutor final : public Executor {
 public:
  QtExecutor();
  ~QtExecutor() override;
  QtExecutor(const QtExecutor&) = delete;
  QtExecutor& operator=(const QtExecutor&) = delete;

  void post(Task task) override;
  [[nodiscard]] RegistrationPtr after(double delaySeconds, Task task) override;
  [[nodiscard]] RegistrationPtr repeat(double firstSeconds, double intervalSeconds, Task task) override;
  [[nodiscard]] RegistrationPtr watch(int descriptor, Readiness readiness, Task task) override;

 private:
  class Loop;
  class Timer;
  class Watch;
  template <typename Object>
  class LoopRegistration;

  /// Shared with the registrations, which may outlive the executor.
  const std::shared_ptr<Loop> loop_;
};

/// The same loop for those who run it.
class QtMainLoop final : public MainLoop {
 public:
  [[nodiscard]] Executor& executor() override { return executor_; }
  void run() override;
  void stop() override;

 private:
  QtExecutor executor_;
};

}  // namespace kestrel
