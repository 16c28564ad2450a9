#include <AppKit/AppKit.h>

#include "KestrelPlatform/macOS/CFValues.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

class MacChime final : public Chime {
 public:
  void play(std::string_view name, std::function<void()> onMissing) override {
    @autoreleasepool {
      NSString* soundName = (__bridge_transfer NSString*)makeCFString(name).release();
      NSSound* sound = [NSSound soundNamed:soundName];
      if (sound == nil) return onMissing();
      // One that is still to be heard does not begin again.
      (void)[sound play];
    }
  }
  void beep() override { NSBeep(); }
};

}  // namespace

std::unique_ptr<Chime> makeMacChime() {
  return std::make_unique<MacChime>();
}

}  // namespace kestrel
