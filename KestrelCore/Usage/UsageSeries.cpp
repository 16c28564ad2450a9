#include "KestrelCore/Usage/UsageSeries.h"

#include <algorithm>
#include <utility>

#include "KestrelCore/Usage/UsageSummaryBuilder.h"

namespace kestrel {

UsageSeries::Bounds UsageSeries::Bounds::of(const LocalCalendar& calendar, Date now) {
  Bounds bounds;
  Date at = now;
  for (std::size_t i = 0; i < kDays; ++i) {
    bounds.days.push_back(calendar.startOfDay(at));
    at = bounds.days.back() - 1;
  }
  std::ranges::reverse(bounds.days);
  bounds.hours = calendar.hoursOfDay(now);
  // A day has 23 to 25 hours.
  bounds.tomorrow = calendar.startOfDay(bounds.days.back() + 28 * 3600);
  return bounds;
}

UsageSeries::UsageSeries(Bounds bounds) : bounds_(std::move(bounds)) {
  for (const Date start : bounds_.days) days_.push_back({start, {}, 0, {}});
}

void UsageSeries::add(const UsageEvent& event) {
  if (!covers(event.timestamp)) return;
  const auto added = UsageSummaryBuilder::Contribution::of(event);
  if (!added) return;
  const auto next = std::ranges::upper_bound(bounds_.days, event.timestamp);
  DayTokens& day = days_[static_cast<std::size_t>(next - bounds_.days.begin()) - 1];
  day.totalTokens += added->totalTokens;
  day.byAgent[event.agentType] += added->totalTokens;
  if (added->costEstimateUSD) {
    day.estimatedCostUSD = day.estimatedCostUSD.value_or(0) + *added->costEstimateUSD;
  }
  if (event.timestamp < bounds_.hours.front().startsAt || event.timestamp >= bounds_.tomorrow) return;
  const auto after = std::ranges::upper_bound(bounds_.hours, event.timestamp, {}, &LocalHour::startsAt);
  hours_[static_cast<std::size_t>(std::prev(after)->hour)] += added->totalTokens;
}

}  // namespace kestrel
