#pragma once

#include <string>
#include <vector>

#include "KestrelCore/Support/Date.h"

namespace kestrel {

/// An hour of a day as clocks show it, and when it begins.
struct LocalHour {
  Date startsAt;
  /// 0 to 23.
  int hour = 0;

  friend bool operator==(const LocalHour&, const LocalHour&) = default;
};

/// The user's calendar days. Safe from any thread.
class LocalCalendar {
 public:
  virtual ~LocalCalendar() = default;
  /// The first instant of the day that holds the given one; where a clock change skips midnight, the first
  /// that there is. Instants outside the years 1 to 9999 count as the nearest end of that range.
  [[nodiscard]] virtual Date startOfDay(Date date) const = 0;
  /// "2026-11-21".
  [[nodiscard]] virtual std::string dayName(Date date) const = 0;
  /// "14:05".
  [[nodiscard]] virtual std::string timeOfDay(Date date) const = 0;
  /// The hours of the day that holds the date, in order. A change of the clock leaves one out, or makes one
  /// last for two.
  [[nodiscard]] virtual std::vector<LocalHour> hoursOfDay(Date date) const = 0;
};

/// The machine's time zone, looked up at each call, so that a change of it is followed.
class SystemLocalCalendar final : public LocalCalendar {
 public:
  [[nodiscard]] Date startOfDay(Date date) const override;
  [[nodiscard]] std::string dayName(Date date) const override;
  [[nodiscard]] std::string timeOfDay(Date date) const override;
  [[nodiscard]] std::vector<LocalHour> hoursOfDay(Date date) const override;
};

}  // namespace kestrel
