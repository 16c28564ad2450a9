#include "KestrelPlatform/macOS/FileDescriptorWatch.h"

#include <CoreFoundation/CoreFoundation.h>
#include <fcntl.h>

#include <memory>
#include <utility>

#include "KestrelPlatform/macOS/CFRef.h"
#include "KestrelPlatform/macOS/CallbackSlot.h"

namespace kestrel {

namespace {

class FileDescriptorWatch final : public Registration {
 public:
  FileDescriptorWatch(int descriptor, CFOptionFlags readiness, Executor::Task task)
      : readiness_(readiness), slot_(std::make_shared<CallbackSlot>(std::move(task))) {
    CFFileDescriptorContext context{};
    context.info = this;
    object_ = CFRef<CFFileDescriptorRef>(CFFileDescriptorCreate(kCFAllocatorDefault, descriptor, false,
                                                                &FileDescriptorWatch::ready, &context));
  }

  ~FileDescriptorWatch() override {
    slot_->deactivate();
    if (object_) CFFileDescriptorInvalidate(object_.get());
  }

  FileDescriptorWatch(const FileDescriptorWatch&) = delete;
  FileDescriptorWatch& operator=(const FileDescriptorWatch&) = delete;

  [[nodiscard]] bool start() {
    if (!object_) return false;
    const CFRef<CFRunLoopSourceRef> source(
        CFFileDescriptorCreateRunLoopSource(kCFAllocatorDefault, object_.get(), 0));
    if (!source) return false;
    CFRunLoopAddSource(CFRunLoopGetMain(), source.get(), kCFRunLoopCommonModes);
    CFFileDescriptorEnableCallBacks(object_.get(), readiness_);
    return true;
  }

 private:
  // Each callback disarms the descriptor; arming it again makes the watch level-triggered. The task may have
  // destroyed the watch.
  static void ready(CFFileDescriptorRef object, CFOptionFlags, void* info) {
    const auto& watch = *static_cast<FileDescriptorWatch*>(info);
    const auto slot = watch.slot_;
    const CFOptionFlags readiness = watch.readiness_;
    @autoreleasepool {
      slot->call();
    }
    if (slot->isActive()) CFFileDescriptorEnableCallBacks(object, readiness);
  }

  const CFOptionFlags readiness_;
  const std::shared_ptr<CallbackSlot> slot_;
  CFRef<CFFileDescriptorRef> object_;
};

}  // namespace

RegistrationPtr watchFileDescriptor(int descriptor, Executor::Readiness readiness, Executor::Task task) {
  const int flags = ::fcntl(descriptor, F_GETFL);
  if (flags < 0 || ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) < 0) return nullptr;
  const CFOptionFlags callBack = readiness == Executor::Readiness::readable ? kCFFileDescriptorReadCallBack
                                                                            : kCFFileDescriptorWriteCallBack;
  auto watch = std::make_unique<FileDescriptorWatch>(descriptor, callBack, std::move(task));
  if (!watch->start()) return nullptr;
  return watch;
}

}  // namespace kestrel
