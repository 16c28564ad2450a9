#include "KestrelCore/Agents/PsProcessList.h"
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
  platform.processes = std::make_unique<PsProcessList>();
  platform.applications = makeMacRunningApplications();
  platform.userDefaults = makeMacUserDefaults(context.mainExecutor, context.logSink);
  platform.peerIdentity = makePeerIdentity();
  platform.notifications = makeMacUserNotifications();
  platform.chime = makeMacChime();
  platform.keyMonitor = makeMacGlobalKeyMonitor();
  platform.loginItem = makeMacLoginItem();
  platform.osVersion = macOsVersion();
  platform.assertionSummaryCommand = {"/usr/bin/pmset", "-g", "assertions"};
  return platform;
}

}  // namespace kestrel
