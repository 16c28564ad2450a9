#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/JsonFileDefaults.h"
#include "KestrelPlatform/Linux/LinuxPowerAssertions.h"
#include "KestrelPlatform/Linux/UnavailableHardware.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

Platform makePlatform(const PlatformContext& context) {
  const auto& sink = context.logSink;
  Platform platform;
  platform.powerAssertions = makeLinuxPowerAssertions(context.mainExecutor, sink, context.clock);
  platform.powerSource = makeUnavailablePowerSource(sink);
  platform.lowPowerMode = makeUnavailableLowPowerMode(sink);
  platform.thermal = makeUnavailableThermalSource(sink);
  platform.lid = makeUnavailableLidSource(sink);
  platform.userDefaults =
      std::make_unique<JsonFileDefaults>(context.directories.settingsFile(), context.mainExecutor,
                                         context.files, context.clock, Logger(sink, "settings"));
  platform.peerIdentity = makePeerIdentity();
  return platform;
}

}  // namespace kestrel
