#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Presentation/Timeline.h"
#include "KestrelCore/Support/LocalCalendar.h"

namespace kestrel {

/// A piece of the band. Positions are parts of its width, 0 to 1.
struct TimelineSegment {
  TimelineKind kind = TimelineKind::unknown;
  double start = 0;
  double width = 0;
  /// "Held 14:05 to 15:20 (1 h 15 min): Claude Code working".
  std::string tooltip;

  friend bool operator==(const TimelineSegment&, const TimelineSegment&) = default;
};

/// A label below the band.
struct TimelineMark {
  double position = 0;
  /// "18:00"; "now" at the end.
  std::string text;

  friend bool operator==(const TimelineMark&, const TimelineMark&) = default;
};

/// The last 24 hours as a band, in words and parts of its width.
struct TimelineBand {
  /// From left to right, without gaps.
  std::vector<TimelineSegment> segments;
  /// Every six hours of the clock, and the end.
  std::vector<TimelineMark> marks;
  /// The same for those who cannot see it: "Held for 6 h 41 min of the last 24 hours, blocked for 5 min".
  std::string description;

  friend bool operator==(const TimelineBand&, const TimelineBand&) = default;
};

TimelineBand timelineBand(const Timeline& timeline, const LocalCalendar& calendar, Date now);

/// "Held", "Released", "Blocked", "Unknown".
std::string_view displayWord(TimelineKind kind);

}  // namespace kestrel
