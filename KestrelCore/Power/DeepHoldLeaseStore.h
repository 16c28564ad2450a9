#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Platform/SystemPowerControlling.h"
#include "KestrelCore/Power/DeepSleepStatus.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

class AtomicFileWriter;

/// What the helper must not forget; also the format of its state file.
struct DeepHoldStateRecord {
  bool isHolding = false;
  std::optional<std::string> activeLeaseId;
  std::optional<Date> expiresAt;
  /// Whether sleep was switched off before the hold began.
  bool originalSleepDisabled = false;

  friend bool operator==(const DeepHoldStateRecord&, const DeepHoldStateRecord&) = default;
};

/// Dates as seconds since 2001, absent fields left out.
Json encode(const DeepHoldStateRecord& record);
/// Throws DecodingError.
DeepHoldStateRecord decodeDeepHoldStateRecord(const Json& object);

/// The one lease on the deep hold: who has it, until when, and how the machine was before. Switches sleep off
/// with the first lease and puts it back when the lease is returned or lapses. Safe from any thread.
class DeepHoldLeaseStore {
 public:
  /// Shorter leases are raised to this.
  static constexpr double kMinimumTtlSeconds = 10;

  struct StateFile {
    std::filesystem::path path;
    std::shared_ptr<const AtomicFileWriter> writer;
  };

  /// Goes on with the lease in the state file, but leaves the switch as it is; a file that cannot be read
  /// counts as absent. Without a state file nothing is kept. The power controller outlives the store.
  DeepHoldLeaseStore(SystemPowerControlling& powerController, std::optional<StateFile> stateFile,
                     std::shared_ptr<const Clock> clock, std::shared_ptr<LogSink> sink);

  [[nodiscard]] DeepSleepStatus status() const;
  /// As `status`, without asking the system.
  [[nodiscard]] DeepHoldStateRecord state() const;

  /// Takes the lease, from another holder too. True, also when the switch failed: that shows in the status.
  [[nodiscard]] bool acquire(const std::string& leaseId, double ttlSeconds);
  /// Whoever renews becomes the holder. False when there is no hold.
  [[nodiscard]] bool renew(const std::string& leaseId, double ttlSeconds);
  /// False when another lease is active. Without an identifier any lease ends.
  [[nodiscard]] bool release(const std::optional<std::string>& leaseId);
  /// Ends a lease that has lapsed, and then returns true. To be called more often than the shortest lease
  /// lasts.
  [[nodiscard]] bool checkWatchdog();

 private:
  void load();
  void save() const KESTREL_REQUIRES(lock_);
  void releaseHold() KESTREL_REQUIRES(lock_);
  [[nodiscard]] Date expiryAfter(double ttlSeconds) const;

  SystemPowerControlling& powerController_;
  const std::optional<StateFile> stateFile_;
  const std::shared_ptr<const Clock> clock_;
  const Logger logger_;
  mutable Mutex lock_;
  DeepHoldStateRecord state_ KESTREL_GUARDED_BY(lock_);
};

}  // namespace kestrel
