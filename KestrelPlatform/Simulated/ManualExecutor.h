#pragma once

#include <cstddef>
#include <memory>

#include "KestrelCore/Support/Executor.h"
#include "KestrelPlatform/Simulated/ManualClock.h"

namespace kestrel {

/// An executor with virtual time: nothing runs until the owner says so, on the owner's thread. Its timers
/// follow its own time, which moves the clock along; setting the clock by hand moves no timer, as with real
/// ones. Tasks may be posted and timers made from any thread; the other functions are for one thread, not
/// from tasks.
class ManualExecutor final : public Executor {
 public:
  explicit ManualExecutor(std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>());
  ~ManualExecutor() override;
  ManualExecutor(const ManualExecutor&) = delete;
  ManualExecutor& operator=(const ManualExecutor&) = delete;

  void post(Task task) override;
  [[nodiscard]] RegistrationPtr after(double delaySeconds, Task task) override;
  [[nodiscard]] RegistrationPtr repeat(double firstSeconds, double intervalSeconds, Task task) override;
  [[nodiscard]] RegistrationPtr watch(int descriptor, Readiness readiness, Task task) override;

  /// Runs everything that is due now: posted tasks, those that they post, timers, and watches of descriptors
  /// that are ready (a descriptor that stays ready is served a bounded number of times). Returns the number
  /// of tasks run.
  std::size_t runPending();
  /// Runs what is due now, then moves time from one due timer to the next and runs each at its moment.
  std::size_t advance(double seconds);

  [[nodiscard]] const std::shared_ptr<ManualClock>& clock() const { return clock_; }
  /// Timers that are still to run.
  [[nodiscard]] std::size_t timerCount() const;
  [[nodiscard]] std::size_t watchCount() const;

 private:
  struct Schedule;
  class Entry;

  std::size_t runPosted();
  std::size_t runTimersDueBy(double time);
  std::size_t runReadyWatches();

  const std::shared_ptr<ManualClock> clock_;
  const std::shared_ptr<Schedule> schedule_;
};

}  // namespace kestrel
