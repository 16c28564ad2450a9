#include "KestrelCore/Usage/UsageStore.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

constexpr std::size_t kMaximumDays = 3660;

bool hasUtf8(const UsageEvent& event) {
  return isUtf8(event.id) && isUtf8(event.sessionId) && isUtf8(event.source) &&
         (!event.turnId || isUtf8(*event.turnId)) && (!event.modelId || isUtf8(*event.modelId));
}

UsageEvent asUtf8(UsageEvent event) {
  makeUtf8(event.id);
  makeUtf8(event.sessionId);
  makeUtf8(event.source);
  if (event.turnId) makeUtf8(*event.turnId);
  if (event.modelId) makeUtf8(*event.modelId);
  return event;
}

/// Starts of the last days, the latest first.
std::vector<Date> dayStarts(const LocalCalendar& calendar, Date now, std::size_t days) {
  std::vector<Date> starts;
  for (Date at = now; starts.size() < std::min(days, kMaximumDays); at = starts.back() - 1) {
    starts.push_back(calendar.startOfDay(at));
  }
  return starts;
}

}  // namespace

UsageStore::UsageStore(Dependencies dependencies)
    : clock_(std::move(dependencies.clock)),
      calendar_(std::move(dependencies.calendar)),
      logger_(std::move(dependencies.sink), "usage.store"),
      storage_(std::move(dependencies.file), std::move(dependencies.files), clock_, logger_),
      ledger_(storage_.load()) {}

bool UsageStore::record(const UsageEvent& event) {
  return record(std::span(&event, 1)) == 1;
}

std::size_t UsageStore::record(std::span<const UsageEvent> events) {
  const LockGuard lock(mutex_);
  std::size_t accepted = 0;
  for (const UsageEvent& event : events) {
    if (hasUtf8(event) ? accept(event) : accept(asUtf8(event))) ++accepted;
  }
  if (accepted > 0) storage_.saveAdded(ledger_);
  return accepted;
}

bool UsageStore::accept(const UsageEvent& event) {
  const auto outcome = ledger_.add(event);
  if (outcome == UsageLedger::Outcome::refused) {
    logger_.error("Refused a usage event of {}: its numbers or texts do not fit the store",
                  rawValue(event.agentType));
  }
  if (outcome != UsageLedger::Outcome::added) return false;
  if (todayStartsAt_ && event.timestamp >= *todayStartsAt_ && !todaySums_.add(event)) todayStartsAt_.reset();
  series_.add(event);
  return true;
}

void UsageStore::resetStore() {
  const LockGuard lock(mutex_);
  ledger_ = UsageLedger();
  todayStartsAt_.reset();
  series_ = UsageSeries();
  storage_.saveReset(ledger_);
  logger_.info("UsageStore reset completed.");
}

bool UsageStore::hasTurn(AgentType agent, std::string_view turnId) const {
  const LockGuard lock(mutex_);
  return ledger_.hasTurn(agent, turnId);
}

UsageSummary UsageStore::todaySummary() {
  const LockGuard lock(mutex_);
  return today();
}

UsageSummary UsageStore::today() {
  const Date start = calendar_->startOfDay(clock_->now());
  if (todayStartsAt_ != start) {
    todaySums_ = sum(start, std::nullopt);
    todayStartsAt_ = start;
  }
  return todaySums_.summary();
}

UsageSeries UsageStore::series() {
  const LockGuard lock(mutex_);
  auto bounds = UsageSeries::Bounds::of(*calendar_, clock_->now());
  if (series_.bounds() == bounds) return series_;
  series_ = UsageSeries(std::move(bounds));
  const UsageRows& rows = ledger_.rows();
  UsageEvent event;
  for (auto row = rows.eventFrom(0); row; row = rows.eventFrom(rows.after(*row))) {
    if (!series_.covers(rows.timestamp(*row))) continue;
    rows.read(*row, event);
    series_.add(event);
  }
  return series_;
}

UsageSummary UsageStore::summary(Date from, Date to) const {
  const LockGuard lock(mutex_);
  return sum(from, to).summary();
}

UsageSummaryBuilder UsageStore::sum(Date from, std::optional<Date> to) const {
  const UsageRows& rows = ledger_.rows();
  UsageSummaryBuilder builder;
  UsageEvent event;
  for (auto row = rows.eventFrom(0); row; row = rows.eventFrom(rows.after(*row))) {
    const Date timestamp = rows.timestamp(*row);
    if (timestamp < from || (to && timestamp > *to)) continue;
    rows.read(*row, event);
    (void)builder.add(event);  // The ledger takes nothing that cannot be added up.
  }
  return builder;
}

std::vector<DayUsage> UsageStore::daySummaries(std::size_t days) const {
  const LockGuard lock(mutex_);
  const auto starts = dayStarts(*calendar_, clock_->now(), days);
  std::vector<UsageSummaryBuilder> builders(starts.size());
  const UsageRows& rows = ledger_.rows();
  UsageEvent event;
  for (auto row = rows.eventFrom(0); row; row = rows.eventFrom(rows.after(*row))) {
    const auto day = std::lower_bound(starts.begin(), starts.end(), rows.timestamp(*row), std::greater());
    if (day == starts.end()) continue;
    rows.read(*row, event);
    (void)builders[static_cast<std::size_t>(day - starts.begin())].add(event);
  }
  std::vector<DayUsage> usages;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    usages.push_back({calendar_->dayName(starts[i]), starts[i], builders[i].summary()});
  }
  return usages;
}

std::vector<SessionUsageRecord> UsageStore::recentSessions(std::size_t limit) const {
  const LockGuard lock(mutex_);
  return ledger_.sessions().recent(limit);
}

std::vector<UsageEvent> UsageStore::allEvents() const {
  const LockGuard lock(mutex_);
  const UsageRows& rows = ledger_.rows();
  std::vector<UsageEvent> events;
  events.reserve(rows.size());
  for (auto row = rows.eventFrom(0); row; row = rows.eventFrom(rows.after(*row))) {
    rows.read(*row, events.emplace_back());
  }
  return events;
}

std::size_t UsageStore::eventCount() const {
  const LockGuard lock(mutex_);
  return ledger_.rows().size();
}

std::string UsageStore::exportPrivacySafeJSON() {
  const LockGuard lock(mutex_);
  Json sessions = Json::array();
  for (const auto& record : ledger_.sessions().recent(ledger_.sessions().size())) {
    sessions.push_back(encode(record));
  }
  const Json exported = {{"exportedAt", clock_->now().secondsSinceReferenceDate()},
                         {"schemaVersion", 1},
                         {"todaySummary", encode(today())},
                         {"sessions", std::move(sessions)},
                         {"eventCount", ledger_.rows().size()}};
  return exported.dump(2);
}

void UsageStore::saveWhenIdle() {
  const LockGuard lock(mutex_);
  storage_.saveWhenIdle(ledger_);
}

void UsageStore::saveAtStop() {
  const LockGuard lock(mutex_);
  storage_.saveAtStop(ledger_);
}

}  // namespace kestrel
