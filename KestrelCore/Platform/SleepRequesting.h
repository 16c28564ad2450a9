#pragma once

namespace kestrel {

/// Makes up for a lid that was closed while sleep was switched off. Main thread only; takes a second at most.
class SleepRequesting {
 public:
  virtual ~SleepRequesting() = default;
  /// Lets the machine do what closing the lid would do now. Nothing where the system sees to that by itself
  /// as soon as sleep is possible again.
  virtual void sleepForClosedLid() = 0;
};

}  // namespace kestrel
