#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Support/LocalCalendar.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// Tokens of one day by the hour that clocks showed. An hour that a change of the clock leaves out stays 0,
/// and one that it shows twice has the tokens of both.
using HourlyTokens = std::array<std::int64_t, 24>;

/// What one calendar day used.
struct DayTokens {
  Date startsAt;
  /// Agents with events only.
  std::map<AgentType, std::int64_t> byAgent;
  std::int64_t totalTokens = 0;
  /// Absent until an event carries a cost.
  std::optional<double> estimatedCostUSD;

  friend bool operator==(const DayTokens&, const DayTokens&) = default;
};

/// Adds events up by hour of today and by day. Knows nothing of calendars: it is made for the bounds of the
/// moment, and made anew when they change. Not thread-safe.
class UsageSeries {
 public:
  static constexpr std::size_t kDays = 14;

  /// Where the days and hours begin.
  struct Bounds {
    /// Today last, kDays of them.
    std::vector<Date> days;
    std::vector<LocalHour> hours;
    Date tomorrow;

    static Bounds of(const LocalCalendar& calendar, Date now);
    friend bool operator==(const Bounds&, const Bounds&) = default;
  };

  UsageSeries() = default;
  explicit UsageSeries(Bounds bounds);

  [[nodiscard]] const Bounds& bounds() const { return bounds_; }
  /// Whether an event of that time would be counted.
  [[nodiscard]] bool covers(Date timestamp) const {
    return !bounds_.days.empty() && timestamp >= bounds_.days.front();
  }
  /// An event from before the first day is left out; one that lies ahead counts for today, but for no hour.
  /// The caller makes sure that the sums fit.
  void add(const UsageEvent& event);

  [[nodiscard]] const HourlyTokens& hours() const { return hours_; }
  /// The oldest first.
  [[nodiscard]] const std::vector<DayTokens>& days() const { return days_; }

 private:
  Bounds bounds_;
  HourlyTokens hours_{};
  std::vector<DayTokens> days_;
};

}  // namespace kestrel
