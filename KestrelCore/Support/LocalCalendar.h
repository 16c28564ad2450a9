#pragma once

#include <string>

#include "KestrelCore/Support/Date.h"

namespace kestrel {

/// The user's calendar days. Safe from any thread.
class LocalCalendar {
 public:
  virtual ~LocalCalendar() = default;
  /// The first instant of the day that holds the given one; where a clock change skips midnight, the first
  /// that there is. Instants outside the years 1 to 9999 count as the nearest end of that range.
  [[nodiscard]] virtual Date startOfDay(Date date) const = 0;
  /// "2026-11-21".
  [[nodiscard]] virtual std::string dayName(Date date) const = 0;
};

/// The machine's time zone, looked up at each call, so that a change of it is followed.
class SystemLocalCalendar final : public LocalCalendar {
 public:
  [[nodiscard]] Date startOfDay(Date date) const override;
  [[nodiscard]] std::string dayName(Date date) const override;
};

}  // namespace kestrel
