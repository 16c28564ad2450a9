#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel {

/// An absolute instant with double precision, stored as seconds since 2001-01-01 00:00:00 UTC.
/// Durations are plain doubles in seconds.
class Date {
 public:
  /// Seconds from 1970-01-01 to 2001-01-01, both 00:00:00 UTC.
  static constexpr double kSecondsFrom1970To2001 = 978'307'200.0;

  constexpr Date() = default;
  static constexpr Date sinceReferenceDate(double seconds) { return Date(seconds); }
  static constexpr Date since1970(double seconds) { return Date(seconds - kSecondsFrom1970To2001); }

  [[nodiscard]] constexpr double secondsSinceReferenceDate() const { return seconds_; }
  [[nodiscard]] constexpr double secondsSince1970() const { return seconds_ + kSecondsFrom1970To2001; }

  friend constexpr double operator-(Date a, Date b) { return a.seconds_ - b.seconds_; }
  friend constexpr Date operator+(Date d, double seconds) { return Date(d.seconds_ + seconds); }
  friend constexpr Date operator-(Date d, double seconds) { return Date(d.seconds_ - seconds); }
  friend constexpr auto operator<=>(Date, Date) = default;

 private:
  explicit constexpr Date(double seconds) : seconds_(seconds) {}
  double seconds_ = 0;
};

/// "2026-11-21T03:27:05.250Z": UTC with milliseconds. Instants outside the years 1 to 9999, and values that
/// are not finite, are written as the nearest end of that range (a NaN as its start).
std::string iso8601(Date date);

/// Reads "YYYY-MM-DDTHH:MM:SS[.fraction](Z|±HH:MM|±HHMM)". Absent when the text is anything else.
std::optional<Date> parseISO8601(std::string_view text);

}  // namespace kestrel
