#include "KestrelCore/Support/RepeatLimitingLogSink.h"

#include <fmt/format.h>
#include <utility>
#include <vector>

namespace kestrel {
namespace {

// More different lines than this within a minute are no repeats; the memory is then started afresh.
constexpr std::size_t kMaximumLines = 512;

}  // namespace

RepeatLimitingLogSink::RepeatLimitingLogSink(std::shared_ptr<LogSink> target,
                                             std::shared_ptr<const Clock> clock)
    : target_(std::move(target)), clock_(std::move(clock)) {}

RepeatLimitingLogSink::~RepeatLimitingLogSink() {
  LockGuard guard(mutex_);
  const auto summaries = takeExpired(std::nullopt);
  guard.unlock();
  writeSummaries(summaries);
}

bool RepeatLimitingLogSink::isEnabled(LogLevel level) const {
  return target_->isEnabled(level);
}

void RepeatLimitingLogSink::write(const LogRecord& record) {
  const Date now = clock_->now();
  const std::string_view repeatKey = record.repeatKey.empty() ? record.message : record.repeatKey;
  Key key{std::string(record.subsystem), std::string(record.category), std::string(repeatKey)};

  LockGuard guard(mutex_);
  const auto summaries = takeExpired(now);
  const auto [entry, isNew] = lines_.try_emplace(std::move(key));
  Line& line = entry->second;
  if (isNew) {
    line = {now, record.level, {}, 0};
  } else {
    ++line.heldBack;
    line.lastMessage = record.message;
  }
  guard.unlock();

  // The target has a leaf lock of its own, so it is called after this one is released.
  writeSummaries(summaries);
  if (isNew) target_->write(record);
}

std::vector<RepeatLimitingLogSink::Summary> RepeatLimitingLogSink::takeExpired(std::optional<Date> now) {
  std::vector<Summary> summaries;
  const bool all = !now || lines_.size() > kMaximumLines;
  std::erase_if(lines_, [&](const auto& entry) {
    const auto& [key, line] = entry;
    const double age = now ? *now - line.firstWritten : 0;
    // A clock that was set back must not silence a line for longer than the window.
    if (!all && age >= 0 && age < kWindowSeconds) return false;
    if (line.heldBack > 0) {
      summaries.push_back({line.level, std::get<0>(key), std::get<1>(key),
                           fmt::format("{} (repeated {} times)", line.lastMessage, line.heldBack)});
    }
    return true;
  });
  return summaries;
}

void RepeatLimitingLogSink::writeSummaries(const std::vector<Summary>& summaries) {
  for (const auto& summary : summaries) {
    target_->write({summary.level, summary.subsystem, summary.category, summary.message, {}});
  }
}

}  // namespace kestrel
