#include <Foundation/Foundation.h>

#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

class MacLowPowerMode final : public LowPowerMode {
 public:
  bool isEnabled() override { return [NSProcessInfo processInfo].isLowPowerModeEnabled; }
};

}  // namespace

std::unique_ptr<LowPowerMode> makeMacLowPowerMode() {
  return std::make_unique<MacLowPowerMode>();
}

}  // namespace kestrel
