#include "KestrelPlatform/PlatformFactory.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

Platform makePlatform(const PlatformContext& context) {
  Platform platform;
  platform.powerAssertions = makeMacPowerAssertions(context.mainExecutor, context.logSink);
  platform.powerSource = makeMacPowerSource();
  platform.lowPowerMode = makeMacLowPowerMode();
  platform.thermal = makeMacThermalSource();
  platform.lid = makeMacLidSource();
  platform.userDefaults = makeMacUserDefaults(context.mainExecutor, context.logSink);
  platform.peerIdentity = makePeerIdentity();
  return platform;
}

}  // namespace kestrel
