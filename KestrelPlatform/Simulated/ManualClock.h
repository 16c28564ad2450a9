#pragma once

#include <atomic>

#include "KestrelCore/Support/Clock.h"

namespace kestrel {

/// A clock that stands still until it is told. Read from any thread, moved from one; takes no lock, so it can
/// be asked under any.
class ManualClock final : public Clock {
 public:
  /// 2026-11-21T03:27:05Z.
  static constexpr Date kDefaultStart = Date::since1970(1'795'231'625);

  explicit ManualClock(Date start = kDefaultStart);

  [[nodiscard]] Date now() const override;
  /// Jumps, forwards or back, as when somebody sets the machine's clock.
  void set(Date date);
  void advance(double seconds);

 private:
  // Apart, so that many small steps add up without rounding: a Date has a resolution of 0.1 microseconds.
  std::atomic<double> base_;
  std::atomic<double> offset_{0};
};

}  // namespace kestrel
