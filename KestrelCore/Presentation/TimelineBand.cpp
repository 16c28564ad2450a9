#include "KestrelCore/Presentation/TimelineBand.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>

#include "KestrelCore/Presentation/DurationText.h"

namespace kestrel {
namespace {

constexpr double kShownSeconds = 24 * 3600.0;
constexpr int kHoursBetweenMarks = 6;
/// So near to the end a label would touch that of the end.
constexpr double kNearEnd = 0.06;

std::string tooltip(const TimelineSpan& span, const LocalCalendar& calendar) {
  const std::string reason =
      span.kind == TimelineKind::unknown ? "Kestrel was not running, or the computer slept" : span.reason;
  return fmt::format("{} {} to {} ({}): {}", displayWord(span.kind), calendar.timeOfDay(span.begin),
                     calendar.timeOfDay(span.end), durationText(span.end - span.begin), reason);
}

std::vector<TimelineMark> marks(const LocalCalendar& calendar, Date from, Date now) {
  std::vector<TimelineMark> marks{{1, "now"}};
  // Whole days back, the latest first.
  for (Date day = now; day >= from; day = calendar.startOfDay(day) - 1) {
    auto hours = calendar.hoursOfDay(day);
    std::ranges::reverse(hours);
    for (const LocalHour& hour : hours) {
      const double position = (hour.startsAt - from) / kShownSeconds;
      const bool isShown = position >= 0 && position < 1 - kNearEnd;
      if (!isShown || hour.hour % kHoursBetweenMarks != 0) continue;
      marks.push_back({position, calendar.timeOfDay(hour.startsAt)});
    }
  }
  std::ranges::reverse(marks);
  return marks;
}

std::string description(const Timeline& timeline, Date from, Date now) {
  const auto words = [&](TimelineKind kind) { return durationText(timeline.seconds(kind, from, now)); };
  std::string text = fmt::format("Held for {} of the last 24 hours", words(TimelineKind::held));
  if (timeline.seconds(TimelineKind::blocked, from, now) >= 1) {
    text += fmt::format(", blocked for {}", words(TimelineKind::blocked));
  }
  return text;
}

}  // namespace

std::string_view displayWord(TimelineKind kind) {
  constexpr std::array<std::string_view, 4> kWords{"Unknown", "Held", "Released", "Blocked"};
  return kWords[static_cast<std::size_t>(kind)];
}

TimelineBand timelineBand(const Timeline& timeline, const LocalCalendar& calendar, Date now) {
  const Date from = now - kShownSeconds;
  TimelineBand band;
  for (const TimelineSpan& span : timeline.between(from, now)) {
    band.segments.push_back({span.kind, (span.begin - from) / kShownSeconds,
                             (span.end - span.begin) / kShownSeconds, tooltip(span, calendar)});
  }
  band.marks = marks(calendar, from, now);
  band.description = description(timeline, from, now);
  return band;
}

}  // namespace kestrel
