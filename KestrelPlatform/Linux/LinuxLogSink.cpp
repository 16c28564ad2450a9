#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

// Otherwise every record would carry this file's name and line.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <array>
#include <fmt/format.h>
#include <string>
#include <systemd/sd-journal.h>
#include <utility>

#include "KestrelCore/Support/StreamLogSink.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

constexpr const char* kJournalSocket = "/run/systemd/journal/socket";

int journalPriority(LogLevel level) {
  if (level == LogLevel::debug) return LOG_DEBUG;
  return level == LogLevel::info ? LOG_INFO : LOG_ERR;
}

class JournalLogSink final : public LogSink {
 public:
  explicit JournalLogSink(std::shared_ptr<LogSink> fallback) : fallback_(std::move(fallback)) {}

  [[nodiscard]] bool isEnabled(LogLevel) const override { return true; }

  void write(const LogRecord& record) override {
    std::array<std::string, 5> fields{
        "MESSAGE=" + withoutControls(record.message),
        fmt::format("PRIORITY={}", journalPriority(record.level)),
        fmt::format("SUBSYSTEM={}", record.subsystem),
        fmt::format("CATEGORY={}", record.category),
        "SYSLOG_IDENTIFIER=kestrel",
    };
    std::array<iovec, fields.size()> parts{};
    for (std::size_t i = 0; i < fields.size(); ++i) parts[i] = {fields[i].data(), fields[i].size()};
    if (::sd_journal_sendv(parts.data(), static_cast<int>(parts.size())) < 0) fallback_->write(record);
  }

 private:
  const std::shared_ptr<LogSink> fallback_;
};

}  // namespace

std::shared_ptr<LogSink> makeLogSink(bool toTerminal) {
  const auto clock = std::make_shared<SystemClock>();
  const bool isTerminal = ::isatty(STDERR_FILENO) == 1;
  auto stream =
      makeStreamLogSink(STDERR_FILENO, isTerminal ? LogLineStyle::terminal : LogLineStyle::file, clock);
  if (toTerminal && isTerminal) return stream;
  if (::access(kJournalSocket, W_OK) != 0) return stream;
  return std::make_shared<JournalLogSink>(std::move(stream));
}

}  // namespace kestrel
