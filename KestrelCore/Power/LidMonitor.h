#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Platform/LidSource.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// What the coordinator needs to know of the lid.
class LidMonitoring {
 public:
  virtual ~LidMonitoring() = default;
  /// The last reading, an unknown lid being open; from any thread, never asks the system.
  [[nodiscard]] virtual bool isLidClosed() const = 0;
  /// The last reading; absent when unknown.
  [[nodiscard]] virtual std::optional<bool> reading() const = 0;
  virtual void setOnLidStateChanged(std::function<void(bool)> callback) = 0;
  /// Reads the lid afresh.
  virtual void start() = 0;
  virtual void stop() = 0;
  /// Where readings come from; absent when unknown. Main thread.
  [[nodiscard]] virtual std::optional<std::string> sourceName() const = 0;
};

/// Caches the lid's state as of its making or the last `start`; it follows no change by itself. Main thread,
/// but for the readers.
class LidMonitor final : public LidMonitoring {
 public:
  LidMonitor(LidSource& source, std::shared_ptr<LogSink> sink);

  [[nodiscard]] bool isLidClosed() const override;
  [[nodiscard]] std::optional<bool> reading() const override;
  void setOnLidStateChanged(std::function<void(bool)> callback) override;
  void start() override;
  void stop() override {}
  [[nodiscard]] std::optional<std::string> sourceName() const override;

 private:
  LidSource& source_;
  const Logger logger_;
  mutable Mutex lock_;
  std::optional<bool> reading_ KESTREL_GUARDED_BY(lock_);
  std::function<void(bool)> onLidStateChanged_;
};

}  // namespace kestrel
