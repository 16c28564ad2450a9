#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Platform/ThermalSource.h"
#include "KestrelCore/Power/SystemThermalState.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// What the coordinator needs to know of the machine's heat.
class ThermalMonitoring {
 public:
  virtual ~ThermalMonitoring() = default;
  /// The last reading; from any thread, never asks the system.
  [[nodiscard]] virtual SystemThermalState currentThermalState() const = 0;
  /// Called on the main thread at every notification of the system. Set before `start`.
  virtual void setOnThermalStateChanged(std::function<void(SystemThermalState)> callback) = 0;
  virtual void start() = 0;
  virtual void stop() = 0;
  /// Where readings come from; absent when unknown. Main thread.
  [[nodiscard]] virtual std::optional<std::string> sourceName() const = 0;
};

/// Caches the thermal state and follows its changes. Reads once when it is made. Main thread, but for the
/// readers.
class ThermalMonitor final : public ThermalMonitoring {
 public:
  ThermalMonitor(ThermalSource& source, std::shared_ptr<LogSink> sink);

  [[nodiscard]] SystemThermalState currentThermalState() const override;
  void setOnThermalStateChanged(std::function<void(SystemThermalState)> callback) override;
  void start() override;
  void stop() override;
  [[nodiscard]] std::optional<std::string> sourceName() const override;

 private:
  void handleChange();

  ThermalSource& source_;
  const Logger logger_;
  mutable Mutex lock_;
  SystemThermalState cachedState_ KESTREL_GUARDED_BY(lock_);
  std::function<void(SystemThermalState)> onThermalStateChanged_;
  RegistrationPtr observation_;
};

}  // namespace kestrel
