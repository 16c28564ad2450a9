#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Power/DeepHoldProtocol.h"
#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// The hold with the lid closed, as the application asks for it. From any thread; nothing blocks the caller,
/// and each answer comes once, on the controller's own executor. Failures are absorbed.
class DeepSleepControlling {
 public:
  virtual ~DeepSleepControlling() = default;

  /// Whether a lease is held or was last asked for.
  virtual void isDeepHoldActive(std::function<void(bool)> done) = 0;
  /// What the helper says, or that there is none.
  virtual void status(std::function<void(const DeepSleepStatus&)> done) = 0;
  /// Takes the lease, or takes it again, for so many seconds and keeps it alive from then on. True when the
  /// helper granted it.
  virtual void acquire(double ttlSeconds, std::function<void(bool)> done) = 0;
  /// Gives the lease back, if there is one.
  virtual void release(std::function<void()> done) = 0;
};

/// Asks the privileged helper over its socket. An exchange is bounded by a second for each step.
class DeepSleepController final : public DeepSleepControlling {
 public:
  /// `actor` serialises everything here, `renewals` runs the timer that keeps the lease alive. Both are
  /// threads of their own, since exchanges block.
  DeepSleepController(std::string socketPath, std::unique_ptr<Executor> actor,
                      std::unique_ptr<Executor> renewals, std::shared_ptr<LogSink> sink);
  /// With its own threads.
  DeepSleepController(std::string socketPath, std::shared_ptr<LogSink> sink);
  ~DeepSleepController() override;
  DeepSleepController(const DeepSleepController&) = delete;
  DeepSleepController& operator=(const DeepSleepController&) = delete;

  /// The system-wide helper's socket where there is one, else the user's own helper's.
  [[nodiscard]] static std::string defaultSocketPath(const Directories& directories);

  /// One exchange with a helper; absent whatever goes wrong. Blocks for at most a second at each step.
  [[nodiscard]] static std::optional<HelperResponse> sendStaticRequest(const HelperRequest& request,
                                                                       const std::string& socketPath);

  void isDeepHoldActive(std::function<void(bool)> done) override;
  void status(std::function<void(const DeepSleepStatus&)> done) override;
  void acquire(double ttlSeconds, std::function<void(bool)> done) override;
  void release(std::function<void()> done) override;

 private:
  [[nodiscard]] bool acquireNow(double ttlSeconds);
  void startRenewal(const std::string& leaseId, double ttlSeconds);
  void releaseNow();

  const std::string socketPath_;
  const Logger logger_;
  std::unique_ptr<Executor> renewals_;
  std::optional<std::string> currentLeaseId_;
  RegistrationPtr renewalTimer_;
  /// Last, so that its thread has ended before anything it uses goes.
  std::unique_ptr<Executor> actor_;
};

}  // namespace kestrel
