#include "KestrelControl/UsageCommand.h"

#include <string>
#include <unistd.h>

#include "KestrelControl/Output.h"
#include "KestrelControl/UsageText.h"
#include "KestrelCore/Control/UsageReport.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/StreamLogSink.h"

namespace kestrel {
namespace {

constexpr std::size_t kUsualDays = 7;
constexpr std::size_t kUsualSessions = 25;

/// Somebody who asks a question wants to hear of problems only.
class ErrorsOnly final : public LogSink {
 public:
  explicit ErrorsOnly(std::shared_ptr<LogSink> sink) : sink_(std::move(sink)) {}
  [[nodiscard]] bool isEnabled(LogLevel level) const override { return level == LogLevel::error; }
  void write(const LogRecord& record) override { sink_->write(record); }

 private:
  const std::shared_ptr<LogSink> sink_;
};

UsageStore readStore(const Directories& directories, const std::shared_ptr<const Clock>& clock) {
  return UsageStore(
      {UsageStore::defaultFile(directories), nullptr, clock, std::make_shared<SystemLocalCalendar>(),
       std::make_shared<ErrorsOnly>(makeStreamLogSink(STDERR_FILENO, LogLineStyle::terminal, clock))});
}

int printEither(const Json& report, const std::string& text, bool asJson) {
  return print(asJson ? report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n" : text);
}

}  // namespace

int runUsageCommand(const UsageOptions& options, const Directories& directories,
                    const std::function<Json()>& askKestrel) {
  const auto clock = std::make_shared<SystemClock>();
  if (options.what == "sessions") {
    // For other programs everything, unless they say otherwise.
    const auto usual = options.json ? SIZE_MAX : kUsualSessions;
    const auto sessions = readStore(directories, clock).recentSessions(options.limit.value_or(usual));
    return printEither(usageSessionsReport(sessions), usageSessionsText(sessions, clock->now()),
                       options.json);
  }
  if (options.what == "days") {
    const auto days = readStore(directories, clock).daySummaries(options.limit.value_or(kUsualDays));
    return printEither(usageDaysReport(days), usageDaysText(days), options.json);
  }
  Json usage = askKestrel();
  if (!usage.is_object()) {
    usage = {{"today", encode(readStore(directories, clock).todaySummary())}};
  }
  return printEither(usage["today"], usageTodayText(usage), options.json);
}

}  // namespace kestrel
