#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Platform/HelperPlatform.h"
#include "KestrelCore/Power/BatteryMonitor.h"
#include "KestrelCore/Power/DeepHoldLeaseStore.h"
#include "KestrelCore/Power/DeepHoldProtocol.h"
#include "KestrelCore/Power/ThermalMonitor.h"
#include "KestrelCore/Support/UnixSocketServer.h"

namespace kestrel {

/// Answers requests from the lease store, ends leases that lapse, and lets go by itself where going on would
/// harm the machine. Main thread only.
class HelperService {
 public:
  static constexpr double kWatchdogSeconds = 2;
  static constexpr double kMaximumTtlSeconds = 86'400;
  static constexpr std::size_t kMaximumLeaseIdBytes = 256;
  static constexpr std::int64_t kEmptyBatteryPercent = 3;

  struct Context {
    const HelperPlatform& platform;
    DeepHoldLeaseStore& store;
    Executor& executor;
    std::shared_ptr<const Clock> clock;
    std::shared_ptr<LogSink> logSink;
  };

  /// Everything in the context outlives this object. `onUninstall` may be called twice.
  HelperService(const Context& context, std::function<void()> onUninstall);

  /// Puts right what an earlier helper left behind, and begins to watch.
  void start();
  /// Gives the hold back.
  void stop();

  /// One request, one answer; whatever is wrong with it is said in the answer.
  [[nodiscard]] UnixSocketServer::Reply answer(std::string_view request);
  /// How the socket is served: for everybody, of whom the user at the machine is let in, or, without a seat,
  /// for the user who runs this.
  [[nodiscard]] static UnixSocketServer::Protocol protocol(std::shared_ptr<const ActiveSeat> seat);

 private:
  [[nodiscard]] HelperResponse perform(const HelperRequest& request);
  [[nodiscard]] HelperResponse lease(const HelperRequest& request);
  [[nodiscard]] HelperResponse uninstall();
  [[nodiscard]] bool release(const std::optional<std::string>& leaseId);
  void repair();
  void watch();
  void boundLease();
  void letGoInDanger();
  [[nodiscard]] std::optional<std::string> danger() const;
  void afterHold(bool originalSleepDisabled);

  const HelperPlatform& platform_;
  DeepHoldLeaseStore& store_;
  Executor& executor_;
  const std::shared_ptr<const Clock> clock_;
  const Logger logger_;
  const std::function<void()> onUninstall_;
  BatteryMonitor battery_;
  ThermalMonitor thermal_;
  /// The longest that the active lease can have left.
  double longestLeaseSeconds_ = 0;
  RegistrationPtr watchdog_;
  RegistrationPtr uninstallation_;
};

}  // namespace kestrel
