#include "KestrelCore/Power/ThermalMonitor.h"

#include <utility>

namespace kestrel {

ThermalMonitor::ThermalMonitor(ThermalSource& source, std::shared_ptr<LogSink> sink)
    : source_(source),
      logger_(std::move(sink), "thermal"),
      cachedState_(thermalStateFromLevel(source.level())) {}

SystemThermalState ThermalMonitor::currentThermalState() const {
  const LockGuard guard(lock_);
  return cachedState_;
}

void ThermalMonitor::setOnThermalStateChanged(std::function<void(SystemThermalState)> callback) {
  onThermalStateChanged_ = std::move(callback);
}

void ThermalMonitor::start() {
  if (observation_) return;
  observation_ = source_.observe([this] { handleChange(); });
  if (observation_) logger_.info("Thermal monitor started observing thermal state");
}

void ThermalMonitor::handleChange() {
  const SystemThermalState state = thermalStateFromLevel(source_.level());
  LockGuard guard(lock_);
  cachedState_ = state;
  guard.unlock();
  logger_.info("Thermal state changed to: {}", rawValue(state));
  if (onThermalStateChanged_) onThermalStateChanged_(state);
}

void ThermalMonitor::stop() {
  if (!observation_) return;
  observation_.reset();
  logger_.info("Thermal monitor stopped");
}

std::optional<std::string> ThermalMonitor::sourceName() const {
  return source_.sourceName();
}

}  // namespace kestrel
