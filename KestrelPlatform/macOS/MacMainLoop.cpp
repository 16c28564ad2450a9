#include <CoreFoundation/CoreFoundation.h>
#include <memory>

#include "KestrelPlatform/PlatformFactory.h"
#include "KestrelPlatform/macOS/RunLoopExecutor.h"

namespace kestrel {

namespace {

class MacMainLoop final : public MainLoop {
 public:
  Executor& executor() override { return executor_; }

  void run() override {
    // The executor's source keeps the run loop from finishing for want of work. A long time, not for ever:
    // the run loop adds it to the current time.
    constexpr CFTimeInterval kAbout300Years = 1e10;
    stopped_ = false;
    while (!stopped_) CFRunLoopRunInMode(kCFRunLoopDefaultMode, kAbout300Years, false);
  }

  void stop() override {
    stopped_ = true;
    executor_.dropPostedTasks();
    CFRunLoopStop(CFRunLoopGetMain());
  }

 private:
  RunLoopExecutor executor_;
  bool stopped_ = false;
};

}  // namespace

std::unique_ptr<MainLoop> makeMainLoop() {
  return std::make_unique<MacMainLoop>();
}

}  // namespace kestrel
