#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// Lets an identical line of one category through at most once a minute. What was held back is said as a
/// count when the minute is over and something is logged again, so a failure repeated every second is one
/// line.
class RepeatLimitingLogSink final : public LogSink {
 public:
  static constexpr double kWindowSeconds = 60;

  RepeatLimitingLogSink(std::shared_ptr<LogSink> target, std::shared_ptr<const Clock> clock);
  /// Writes the counts that are still held back.
  ~RepeatLimitingLogSink() override;

  [[nodiscard]] bool isEnabled(LogLevel level) const override;
  void write(const LogRecord& record) override;

 private:
  struct Line {
    Date firstWritten;
    LogLevel level = LogLevel::info;
    std::string lastMessage;
    long heldBack = 0;
  };
  using Key = std::tuple<std::string, std::string, std::string>;  // subsystem, category, repeat key

  struct Summary {
    LogLevel level;
    std::string subsystem;
    std::string category;
    std::string message;
  };

  /// Forgets the lines whose minute is over (all of them without a time) and returns what they held back.
  [[nodiscard]] std::vector<Summary> takeExpired(std::optional<Date> now) KESTREL_REQUIRES(mutex_);
  void writeSummaries(const std::vector<Summary>& summaries);

  const std::shared_ptr<LogSink> target_;
  const std::shared_ptr<const Clock> clock_;
  Mutex mutex_{LockRank::leaf};
  std::map<Key, Line> lines_ KESTREL_GUARDED_BY(mutex_);
};

}  // namespace kestrel
