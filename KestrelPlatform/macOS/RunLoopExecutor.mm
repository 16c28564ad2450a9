#include "KestrelPlatform/macOS/RunLoopExecutor.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "KestrelPlatform/macOS/CallbackSlot.h"
#include "KestrelPlatform/macOS/FileDescriptorWatch.h"

namespace kestrel {

namespace {

class TimerRegistration final : public Registration {
 public:
  TimerRegistration(std::shared_ptr<CallbackSlot> slot, CFRef<CFRunLoopTimerRef> timer)
      : slot_(std::move(slot)), timer_(std::move(timer)) {}
  ~TimerRegistration() override {
    slot_->deactivate();
    if (timer_) CFRunLoopTimerInvalidate(timer_.get());
  }

 private:
  std::shared_ptr<CallbackSlot> slot_;
  CFRef<CFRunLoopTimerRef> timer_;
};

// An interval of 0 makes a timer that fires once. The run loop turns the date into ticks of the clock that
// stands still during sleep at once, so that a later change of the wall clock does not matter.
RegistrationPtr makeTimer(double delaySeconds, double intervalSeconds, Executor::Task task) {
  auto slot = std::make_shared<CallbackSlot>(std::move(task));
  const CFAbsoluteTime fireDate = CFAbsoluteTimeGetCurrent() + std::max(delaySeconds, 0.0);
  CFRef<CFRunLoopTimerRef> timer(CFRunLoopTimerCreateWithHandler(
      kCFAllocatorDefault, fireDate, intervalSeconds, 0, 0, ^(CFRunLoopTimerRef) {
        const std::shared_ptr<CallbackSlot> alive = slot;
        @autoreleasepool {
          alive->call();
        }
      }));
  if (timer) CFRunLoopAddTimer(CFRunLoopGetMain(), timer.get(), kCFRunLoopCommonModes);
  CFRunLoopWakeUp(CFRunLoopGetMain());
  return std::make_unique<TimerRegistration>(std::move(slot), std::move(timer));
}

}  // namespace

RunLoopExecutor::RunLoopExecutor() {
  CFRunLoopSourceContext context{};
  context.info = this;
  context.perform = &RunLoopExecutor::perform;
  posted_ = CFRef<CFRunLoopSourceRef>(CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context));
  CFRunLoopAddSource(CFRunLoopGetMain(), posted_.get(), kCFRunLoopCommonModes);
}

RunLoopExecutor::~RunLoopExecutor() {
  CFRunLoopSourceInvalidate(posted_.get());
  dropPostedTasks();
}

void RunLoopExecutor::post(Task task) {
  {
    const LockGuard guard(mutex_);
    tasks_.push_back(std::move(task));
  }
  CFRunLoopSourceSignal(posted_.get());
  CFRunLoopWakeUp(CFRunLoopGetMain());
}

RegistrationPtr RunLoopExecutor::after(double delaySeconds, Task task) {
  return makeTimer(delaySeconds, 0, std::move(task));
}

RegistrationPtr RunLoopExecutor::repeat(double firstSeconds, double intervalSeconds, Task task) {
  constexpr double kShortestInterval = 0.001;
  return makeTimer(firstSeconds, std::max(intervalSeconds, kShortestInterval), std::move(task));
}

RegistrationPtr RunLoopExecutor::watch(int descriptor, Readiness readiness, Task task) {
  return watchFileDescriptor(descriptor, readiness, std::move(task));
}

// The tasks posted meanwhile wait for the next turn of the loop, so that they cannot starve its other
// sources.
void RunLoopExecutor::perform(void* executor) {
  auto& self = *static_cast<RunLoopExecutor*>(executor);
  for (std::size_t left = self.taskCount(); left > 0; --left) {
    auto task = self.takeTask();
    if (!task) return;
    @autoreleasepool {
      (*task)();
      task.reset();
    }
  }
}

std::optional<Executor::Task> RunLoopExecutor::takeTask() {
  const LockGuard guard(mutex_);
  if (tasks_.empty()) return std::nullopt;
  Task task = std::move(tasks_.front());
  tasks_.pop_front();
  return task;
}

std::size_t RunLoopExecutor::taskCount() {
  const LockGuard guard(mutex_);
  return tasks_.size();
}

void RunLoopExecutor::dropPostedTasks() {
  std::deque<Task> dropped;
  LockGuard guard(mutex_);
  dropped.swap(tasks_);
  guard.unlock();
}

}  // namespace kestrel
