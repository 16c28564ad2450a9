#include "KestrelPlatform/Simulated/ManualExecutor.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <fcntl.h>
#include <map>
#include <optional>
#include <poll.h>
#include <utility>
#include <vector>

#include "KestrelCore/Support/Mutex.h"

namespace kestrel {
namespace {

// Sums of decimal fractions miss a due time by less than this.
constexpr double kRounding = 1e-9;
constexpr int kMaximumWatchRounds = 16;

}  // namespace

struct ManualExecutor::Schedule {
  // Tasks are shared so that one can drop its own registration while it runs, and so that none is destroyed
  // (with whatever it captured) under the lock.
  using SharedTask = std::shared_ptr<Task>;
  struct Timer {
    double due;
    std::optional<double> interval;
    SharedTask task;
  };
  struct Watch {
    int descriptor;
    short events;
    SharedTask task;
  };

  mutable Mutex mutex{LockRank::leaf};
  double elapsed KESTREL_GUARDED_BY(mutex) = 0;
  std::uint64_t nextId KESTREL_GUARDED_BY(mutex) = 1;
  std::deque<Task> posted KESTREL_GUARDED_BY(mutex);
  std::map<std::uint64_t, Timer> timers KESTREL_GUARDED_BY(mutex);
  std::map<std::uint64_t, Watch> watches KESTREL_GUARDED_BY(mutex);

  std::uint64_t addTimer(double delay, std::optional<double> interval, Task task) {
    auto shared = std::make_shared<Task>(std::move(task));
    const LockGuard lock(mutex);
    timers.emplace(nextId, Timer{elapsed + std::max(delay, 0.0), interval, std::move(shared)});
    return nextId++;
  }

  void remove(std::uint64_t id) {
    SharedTask doomed;
    const LockGuard lock(mutex);
    if (const auto timer = timers.extract(id)) doomed = std::move(timer.mapped().task);
    if (const auto watch = watches.extract(id)) doomed = std::move(watch.mapped().task);
  }

  // The earliest timer that is due by a time, ready to run: a single one is taken out, a repeating one moved
  // on. Time goes to its moment.
  SharedTask takeTimerDueBy(double time, ManualClock& clock) {
    SharedTask task;
    const LockGuard lock(mutex);
    const auto earliest = std::min_element(timers.begin(), timers.end(), [](const auto& a, const auto& b) {
      return a.second.due < b.second.due;
    });
    if (earliest == timers.end() || earliest->second.due > time + kRounding) return nullptr;
    Timer& timer = earliest->second;
    moveTo(timer.due, clock);
    task = timer.task;
    if (timer.interval) {
      timer.due += *timer.interval;
    } else {
      timers.erase(earliest);
    }
    return task;
  }

  void moveTo(double time, ManualClock& clock) KESTREL_REQUIRES(mutex) {
    if (time <= elapsed) return;
    clock.advance(time - elapsed);
    elapsed = time;
  }
};

class ManualExecutor::Entry final : public Registration {
 public:
  Entry(std::weak_ptr<Schedule> schedule, std::uint64_t id) : schedule_(std::move(schedule)), id_(id) {}
  ~Entry() override {
    if (const auto schedule = schedule_.lock()) schedule->remove(id_);
  }

 private:
  const std::weak_ptr<Schedule> schedule_;
  const std::uint64_t id_;
};

ManualExecutor::ManualExecutor(std::shared_ptr<ManualClock> clock)
    : clock_(std::move(clock)), schedule_(std::make_shared<Schedule>()) {}

ManualExecutor::~ManualExecutor() = default;

void ManualExecutor::post(Task task) {
  const LockGuard lock(schedule_->mutex);
  schedule_->posted.push_back(std::move(task));
}

RegistrationPtr ManualExecutor::after(double delaySeconds, Task task) {
  return std::make_unique<Entry>(schedule_, schedule_->addTimer(delaySeconds, std::nullopt, std::move(task)));
}

RegistrationPtr ManualExecutor::repeat(double firstSeconds, double intervalSeconds, Task task) {
  return std::make_unique<Entry>(schedule_,
                                 schedule_->addTimer(firstSeconds, intervalSeconds, std::move(task)));
}

RegistrationPtr ManualExecutor::watch(int descriptor, Readiness readiness, Task task) {
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
  const short events = readiness == Readiness::readable ? POLLIN : POLLOUT;
  auto shared = std::make_shared<Task>(std::move(task));
  LockGuard lock(schedule_->mutex);
  const std::uint64_t id = schedule_->nextId++;
  schedule_->watches.emplace(id, Schedule::Watch{descriptor, events, std::move(shared)});
  lock.unlock();
  return std::make_unique<Entry>(schedule_, id);
}

std::size_t ManualExecutor::runPending() {
  return advance(0);
}

std::size_t ManualExecutor::advance(double seconds) {
  LockGuard lock(schedule_->mutex);
  const double target = schedule_->elapsed + std::max(seconds, 0.0);
  lock.unlock();
  std::size_t count = runPosted();
  count += runReadyWatches();
  count += runTimersDueBy(target);
  {
    const LockGuard guard(schedule_->mutex);
    schedule_->moveTo(target, *clock_);
  }
  return count + runReadyWatches();
}

std::size_t ManualExecutor::timerCount() const {
  const LockGuard lock(schedule_->mutex);
  return schedule_->timers.size();
}

std::size_t ManualExecutor::watchCount() const {
  const LockGuard lock(schedule_->mutex);
  return schedule_->watches.size();
}

std::size_t ManualExecutor::runPosted() {
  for (std::size_t count = 0;; ++count) {
    LockGuard lock(schedule_->mutex);
    if (schedule_->posted.empty()) return count;
    const Task task = std::move(schedule_->posted.front());
    schedule_->posted.pop_front();
    lock.unlock();
    task();
  }
}

std::size_t ManualExecutor::runTimersDueBy(double time) {
  std::size_t count = 0;
  while (const auto task = schedule_->takeTimerDueBy(time, *clock_)) {
    (*task)();
    count += 1 + runPosted();
  }
  return count;
}

std::size_t ManualExecutor::runReadyWatches() {
  std::size_t count = 0;
  for (int round = 0; round < kMaximumWatchRounds; ++round) {
    std::vector<pollfd> descriptors;
    std::vector<std::weak_ptr<Task>> tasks;
    LockGuard lock(schedule_->mutex);
    for (const auto& [id, watch] : schedule_->watches) {
      descriptors.push_back({watch.descriptor, watch.events, 0});
      tasks.emplace_back(watch.task);
    }
    lock.unlock();
    if (::poll(descriptors.data(), descriptors.size(), 0) <= 0) break;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
      const auto task = descriptors[i].revents != 0 ? tasks[i].lock() : nullptr;
      if (!task) continue;
      (*task)();
      count += 1 + runPosted();
    }
  }
  return count;
}

}  // namespace kestrel
