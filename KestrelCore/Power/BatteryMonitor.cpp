#include "KestrelCore/Power/BatteryMonitor.h"

#include <algorithm>
#include <utility>

namespace kestrel {
namespace {

std::optional<PowerSourceDescription> firstDescribed(const PowerSource::List& sources) {
  for (const auto& source : sources) {
    if (source) return source;
  }
  return std::nullopt;
}

std::optional<std::int64_t> percentOf(const PowerSourceDescription& source) {
  if (!source.currentCapacity || !source.maxCapacity || *source.maxCapacity < 1) return std::nullopt;
  // Multiplied first, so that 57 of 100 is not truncated to 56.
  const double percent =
      static_cast<double>(*source.currentCapacity) * 100 / static_cast<double>(*source.maxCapacity);
  // A battery that claims to hold more than its maximum is full.
  return static_cast<std::int64_t>(std::clamp(percent, 0.0, 100.0));
}

}  // namespace

BatteryMonitor::BatteryMonitor(PowerSource& source, LowPowerMode& lowPowerMode, std::shared_ptr<LogSink> sink)
    : source_(source),
      lowPowerMode_(lowPowerMode),
      logger_(std::move(sink), "battery"),
      cachedSnapshot_(queryPowerSource()) {}

PowerSourceSnapshot BatteryMonitor::queryPowerSource() const {
  const auto sources = source_.read();
  if (!sources) return {};
  const std::optional<PowerSourceDescription> described = firstDescribed(*sources);
  if (!described) return {};
  const PowerSourceDescription& description = *described;
  PowerSourceSnapshot snapshot;
  snapshot.isOnAC = description.powerSourceState == "AC Power";
  snapshot.isCharging = description.isCharging.value_or(false);
  snapshot.batteryPercent = percentOf(description);
  if (description.timeToEmpty.value_or(0) >= 1) snapshot.timeRemainingMinutes = description.timeToEmpty;
  snapshot.isLowPowerMode = lowPowerMode_.isEnabled();
  return snapshot;
}

PowerSourceSnapshot BatteryMonitor::currentSnapshot() const {
  const LockGuard guard(lock_);
  return cachedSnapshot_;
}

void BatteryMonitor::setOnPowerSourceChanged(std::function<void(const PowerSourceSnapshot&)> callback) {
  onPowerSourceChanged_ = std::move(callback);
}

void BatteryMonitor::start() {
  if (observation_) return;
  observation_ = source_.observe([this] { handleChange(); });
  if (observation_) logger_.info("Battery monitor started observing power sources");
}

void BatteryMonitor::handleChange() {
  const PowerSourceSnapshot snapshot = queryPowerSource();
  LockGuard guard(lock_);
  cachedSnapshot_ = snapshot;
  guard.unlock();
  logger_.info("Power source changed: isOnAC={} percent={}%", snapshot.isOnAC,
               snapshot.batteryPercent.value_or(-1));
  if (onPowerSourceChanged_) onPowerSourceChanged_(snapshot);
}

void BatteryMonitor::stop() {
  if (!observation_) return;
  observation_.reset();
  logger_.info("Battery monitor stopped");
}

std::optional<std::string> BatteryMonitor::sourceName() const {
  return source_.sourceName();
}

}  // namespace kestrel
