#include "KestrelPlatform/Simulated/ManualClock.h"

namespace kestrel {

ManualClock::ManualClock(Date start) : base_(start.secondsSinceReferenceDate()) {}

Date ManualClock::now() const {
  return Date::sinceReferenceDate(base_ + offset_);
}

void ManualClock::set(Date date) {
  offset_ = 0;
  base_ = date.secondsSinceReferenceDate();
}

void ManualClock::advance(double seconds) {
  offset_ = offset_ + seconds;
}

}  // namespace kestrel
