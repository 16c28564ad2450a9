#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelCore/Power/PowerSourceSnapshot.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// What the coordinator needs to know of the power source.
class BatteryMonitoring {
 public:
  virtual ~BatteryMonitoring() = default;
  /// The last reading; from any thread, never asks the system.
  [[nodiscard]] virtual PowerSourceSnapshot currentSnapshot() const = 0;
  /// Called on the main thread at every notification of the system. Set before `start`.
  virtual void setOnPowerSourceChanged(std::function<void(const PowerSourceSnapshot&)> callback) = 0;
  virtual void start() = 0;
  virtual void stop() = 0;
  /// Where readings come from; absent when unknown. Main thread.
  [[nodiscard]] virtual std::optional<std::string> sourceName() const = 0;
};

/// Caches the power source and follows its changes. Reads once when it is made. Main thread, but for the
/// readers.
class BatteryMonitor final : public BatteryMonitoring {
 public:
  BatteryMonitor(PowerSource& source, LowPowerMode& lowPowerMode, std::shared_ptr<LogSink> sink);

  [[nodiscard]] PowerSourceSnapshot currentSnapshot() const override;
  void setOnPowerSourceChanged(std::function<void(const PowerSourceSnapshot&)> callback) override;
  void start() override;
  void stop() override;
  [[nodiscard]] std::optional<std::string> sourceName() const override;

 private:
  [[nodiscard]] PowerSourceSnapshot queryPowerSource() const;
  void handleChange();

  PowerSource& source_;
  LowPowerMode& lowPowerMode_;
  const Logger logger_;
  mutable Mutex lock_;
  PowerSourceSnapshot cachedSnapshot_ KESTREL_GUARDED_BY(lock_);
  std::function<void(const PowerSourceSnapshot&)> onPowerSourceChanged_;
  RegistrationPtr observation_;
};

}  // namespace kestrel
