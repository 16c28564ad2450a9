#include "KestrelCore/Power/LidMonitor.h"

#include <utility>

namespace kestrel {

LidMonitor::LidMonitor(LidSource& source, std::shared_ptr<LogSink> sink)
    : source_(source), logger_(std::move(sink), "lid"), reading_(source.isClosed()) {}

bool LidMonitor::isLidClosed() const {
  return reading().value_or(false);
}

std::optional<bool> LidMonitor::reading() const {
  const LockGuard guard(lock_);
  return reading_;
}

void LidMonitor::setOnLidStateChanged(std::function<void(bool)> callback) {
  onLidStateChanged_ = std::move(callback);
}

void LidMonitor::start() {
  const auto reading = source_.isClosed();
  LockGuard guard(lock_);
  reading_ = reading;
  guard.unlock();
  logger_.info("Lid monitor initialized (isLidClosed: {})", reading.value_or(false));
}

std::optional<std::string> LidMonitor::sourceName() const {
  return source_.sourceName();
}

}  // namespace kestrel
