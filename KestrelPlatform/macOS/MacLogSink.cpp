#include <map>
#include <os/log.h>
#include <string>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelCore/Support/StreamLogSink.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

namespace {

os_log_type_t typeOf(LogLevel level) {
  switch (level) {
    case LogLevel::debug:
      return OS_LOG_TYPE_DEBUG;
    case LogLevel::info:
      return OS_LOG_TYPE_INFO;
    case LogLevel::error:
      return OS_LOG_TYPE_ERROR;
  }
  return OS_LOG_TYPE_DEFAULT;
}

class UnifiedLogSink final : public LogSink {
 public:
  bool isEnabled(LogLevel level) const override { return os_log_type_enabled(appLog_, typeOf(level)); }

  void write(const LogRecord& record) override {
    const std::string message = withoutControls(record.message);
    // Public, or the system would show "<private>" in place of the whole line.
    os_log_with_type(logFor(record), typeOf(record.level), "%{public}s", message.c_str());
  }

 private:
  // The system never frees a log object, so that each is made once.
  os_log_t logFor(const LogRecord& record) {
    const LockGuard guard(mutex_);
    const auto [entry, isNew] =
        logs_.try_emplace({std::string(record.subsystem), std::string(record.category)}, nullptr);
    if (isNew) entry->second = os_log_create(entry->first.first.c_str(), entry->first.second.c_str());
    return entry->second;
  }

  const os_log_t appLog_ = os_log_create(std::string(kAppSubsystem).c_str(), "app");
  Mutex mutex_{LockRank::leaf};
  std::map<std::pair<std::string, std::string>, os_log_t> logs_ KESTREL_GUARDED_BY(mutex_);
};

}  // namespace

std::shared_ptr<LogSink> makeLogSink(bool toTerminal) {
  if (toTerminal && ::isatty(STDERR_FILENO) == 1) {
    return makeStreamLogSink(STDERR_FILENO, LogLineStyle::terminal, std::make_shared<SystemClock>());
  }
  return std::make_shared<UnifiedLogSink>();
}

}  // namespace kestrel
