#include <IOKit/IOKitLib.h>

#include "KestrelPlatform/macOS/CFValues.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

std::optional<bool> readPowerManagementFlag(CFStringRef key) {
  const io_service_t rootDomain =
      IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("IOPMrootDomain"));
  if (rootDomain == IO_OBJECT_NULL) return std::nullopt;
  const CFRef<CFTypeRef> state(IORegistryEntryCreateCFProperty(rootDomain, key, kCFAllocatorDefault, 0));
  IOObjectRelease(rootDomain);
  return boolValue(state.get());
}

namespace {

std::optional<bool> readClamshellState() {
  return readPowerManagementFlag(CFSTR("AppleClamshellState"));
}

class MacLidSource final : public LidSource {
 public:
  std::optional<bool> isClosed() override { return readClamshellState(); }

  RegistrationPtr observe(std::function<void()>) override { return nullptr; }

  std::optional<std::string> sourceName() const override {
    if (!readClamshellState()) return std::nullopt;
    return "macOS clamshell state";
  }
};

}  // namespace

std::unique_ptr<LidSource> makeMacLidSource() {
  return std::make_unique<MacLidSource>();
}

}  // namespace kestrel
