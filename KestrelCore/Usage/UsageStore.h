#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/LocalCalendar.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelCore/Usage/SessionUsageRecord.h"
#include "KestrelCore/Usage/UsageEvent.h"
#include "KestrelCore/Usage/UsageLedger.h"
#include "KestrelCore/Usage/UsageSeries.h"
#include "KestrelCore/Usage/UsageStorage.h"
#include "KestrelCore/Usage/UsageSummary.h"
#include "KestrelCore/Usage/UsageSummaryBuilder.h"

namespace kestrel {

/// What one calendar day used.
struct DayUsage {
  /// "2026-11-21".
  std::string day;
  Date startsAt;
  UsageSummary summary;
};

/// The account of tokens and money: every accepted event, folded into one record per session, each event
/// once. What `record` accepted outlives the process from its return on; when it cannot be saved, that is one
/// log line, it stays in memory, and saving it is tried again with the next accepted event and when idle. A
/// second process that opens the same store to write keeps what it records in memory only, after one log
/// line. Safe from any thread; one lock is held for each whole operation, writing included.
class UsageStore {
 public:
  struct Dependencies {
    std::filesystem::path file;
    /// Null: for a reader, which writes nothing at all, takes no lock and may read while another process
    /// writes.
    std::shared_ptr<const AtomicFileWriter> files;
    std::shared_ptr<const Clock> clock;
    std::shared_ptr<const LocalCalendar> calendar;
    std::shared_ptr<LogSink> sink;
  };

  static std::filesystem::path defaultFile(const Directories& directories) {
    return directories.applicationSupport / "Kestrel" / "usage_store.json";
  }

  /// Loads. A file that cannot be read or decoded counts as empty; it is moved aside by the first write.
  explicit UsageStore(Dependencies dependencies);

  /// True when the event was new. False, and nothing is changed, when its deduplication key is known, or,
  /// with one log line, when a sum would overflow, a number is not finite or its texts exceed 64 KiB. Bytes
  /// that are not UTF-8 become question marks.
  bool record(const UsageEvent& event);
  /// What single calls in that order would do, with one write; the number of new events.
  std::size_t record(std::span<const UsageEvent> events);
  /// Empties everything and saves.
  void resetStore();

  /// Whether the agent has a turn with that id, in whichever session. For readers of logs that carry the same
  /// turn under several sessions.
  [[nodiscard]] bool hasTurn(AgentType agent, std::string_view turnId) const;
  /// From the start of the current calendar day on. Costs a walk over all events only on the first call of a
  /// day, or after a change of the clock or the time zone.
  [[nodiscard]] UsageSummary todaySummary();
  /// The sums of today by hour and of the last days, in the time zone of the moment. Costs a walk over all
  /// events as todaySummary() does.
  [[nodiscard]] UsageSeries series();
  /// Both ends included.
  [[nodiscard]] UsageSummary summary(Date from, Date to) const;
  /// The last so many calendar days, today (and all that lies ahead) first, days without events too. At most
  /// 3,660.
  [[nodiscard]] std::vector<DayUsage> daySummaries(std::size_t days) const;
  /// At most so many, the last active first.
  [[nodiscard]] std::vector<SessionUsageRecord> recentSessions(std::size_t limit) const;
  /// In order of arrival.
  [[nodiscard]] std::vector<UsageEvent> allEvents() const;
  [[nodiscard]] std::size_t eventCount() const;
  /// Today's summary, the sessions and the number of events, as indented JSON with sorted keys.
  [[nodiscard]] std::string exportPrivacySafeJSON();

  /// Puts grown journals into the file; for a moment without other work, since it may write all of it.
  void saveWhenIdle();
  /// Makes the file complete; before the end of the process.
  void saveAtStop();

 private:
  [[nodiscard]] bool accept(const UsageEvent& event) KESTREL_REQUIRES(mutex_);
  [[nodiscard]] UsageSummary today() KESTREL_REQUIRES(mutex_);
  [[nodiscard]] UsageSummaryBuilder sum(Date from, std::optional<Date> to) const KESTREL_REQUIRES(mutex_);

  const std::shared_ptr<const Clock> clock_;
  const std::shared_ptr<const LocalCalendar> calendar_;
  const Logger logger_;
  mutable Mutex mutex_;
  UsageStorage storage_ KESTREL_GUARDED_BY(mutex_);
  UsageLedger ledger_ KESTREL_GUARDED_BY(mutex_);
  /// The running sums of the day that starts then; absent until they are asked for.
  std::optional<Date> todayStartsAt_ KESTREL_GUARDED_BY(mutex_);
  UsageSummaryBuilder todaySums_ KESTREL_GUARDED_BY(mutex_);
  UsageSeries series_ KESTREL_GUARDED_BY(mutex_);
};

}  // namespace kestrel
