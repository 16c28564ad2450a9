#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// `unknown`: Kestrel did not run, or the machine slept.
enum class TimelineKind { unknown, held, released, blocked };

template <>
struct RawValues<TimelineKind> {
  static constexpr std::array<std::string_view, 4> table{"unknown", "held", "released", "blocked"};
};

/// A time during which one thing was decided for one reason.
struct TimelineSpan {
  TimelineKind kind = TimelineKind::unknown;
  std::string reason;
  Date begin;
  Date end;

  friend bool operator==(const TimelineSpan&, const TimelineSpan&) = default;
};

/// What was decided during the last day. Spans are in order and never overlap; what lies between them is
/// unknown. The last one goes on as long as it is recorded. Not thread-safe.
class Timeline {
 public:
  /// The last 24 hours are shown, and today may be an hour longer.
  static constexpr double kKeptSeconds = 26 * 3600.0;
  static constexpr std::size_t kMaximumSpans = 2000;
  /// Silence for longer than this, in seconds, is no part of a span: the machine slept, or its clock was set.
  static constexpr double kMaximumSilence = 30;

  /// What holds at this moment; to be called again and again. True when a span begins. A clock that was set
  /// back takes what it makes the future off the record.
  bool record(TimelineKind kind, std::string_view reason, Date now);

  /// Oldest first, none of them unknown.
  [[nodiscard]] const std::vector<TimelineSpan>& spans() const { return spans_; }
  /// The same within a time, cut at its ends, and with the gaps as unknown spans: covers all of it.
  [[nodiscard]] std::vector<TimelineSpan> between(Date from, Date to) const;
  /// Seconds of spans of that kind within a time.
  [[nodiscard]] double seconds(TimelineKind kind, Date from, Date to) const;
  /// Another one whenever a span begins or goes.
  [[nodiscard]] std::uint64_t revision() const { return revision_; }

  /// As a file keeps it.
  [[nodiscard]] std::string toJson() const;
  /// Leaves out spans that are old, out of order or end after `now`. Throws DecodingError.
  static Timeline fromJson(std::string_view text, Date now);

 private:
  void forget(Date now);
  void makeRoom();

  std::vector<TimelineSpan> spans_;
  std::uint64_t revision_ = 0;
};

}  // namespace kestrel
