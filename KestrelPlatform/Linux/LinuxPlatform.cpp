#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/DesktopEntries.h"
#include "KestrelPlatform/Linux/HardwareServices.h"
#include "KestrelPlatform/Linux/JsonFileDefaults.h"
#include "KestrelPlatform/Linux/LinuxChime.h"
#include "KestrelPlatform/Linux/LinuxGlobalKeyMonitor.h"
#include "KestrelPlatform/Linux/LinuxLidSource.h"
#include "KestrelPlatform/Linux/LinuxLoginItem.h"
#include "KestrelPlatform/Linux/LinuxLowPowerMode.h"
#include "KestrelPlatform/Linux/LinuxPowerAssertions.h"
#include "KestrelPlatform/Linux/LinuxPowerSource.h"
#include "KestrelPlatform/Linux/LinuxProcessList.h"
#include "KestrelPlatform/Linux/LinuxRunningApplications.h"
#include "KestrelPlatform/Linux/LinuxThermalSource.h"
#include "KestrelPlatform/Linux/LinuxUserNotifications.h"
#include "KestrelPlatform/Linux/OsVersion.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

Platform makePlatform(const PlatformContext& context) {
  const auto& sink = context.logSink;
  Platform platform;
  platform.powerAssertions = makeLinuxPowerAssertions(context.mainExecutor, sink, context.clock);
  const auto hardware = std::make_shared<HardwareServices>(context.mainExecutor, sink);
  platform.powerSource = makeLinuxPowerSource(context.mainExecutor, sink, hardware);
  platform.lowPowerMode = makeLinuxLowPowerMode(hardware);
  platform.thermal = makeLinuxThermalSource(context.mainExecutor, sink);
  platform.lid = makeLinuxLidSource(context.mainExecutor, sink, hardware);
  platform.processes = makeLinuxProcessList(sink);
  platform.applications =
      makeLinuxRunningApplications(applicationsFolders(context.directories.home), context.clock);
  platform.userDefaults =
      std::make_unique<JsonFileDefaults>(context.directories.settingsFile(), context.mainExecutor,
                                         context.files, context.clock, Logger(sink, "settings"));
  platform.peerIdentity = makePeerIdentity();
  // Not the desktop's own executable: this one chooses the front end at each start.
  const std::filesystem::path program = companionProgram("kestrel").value_or(ownProgram());
  platform.notifications = makeLinuxUserNotifications(context.mainExecutor, sink);
  platform.chime =
      makeLinuxChime(context.mainExecutor, sink,
                     companionProgram("kestrel-chime").value_or(program.parent_path() / "kestrel-chime"));
  platform.keyMonitor = makeLinuxGlobalKeyMonitor(context.mainExecutor, sink);
  platform.loginItem =
      makeLinuxLoginItem(autostartEntry(context.directories.preferences), program, context.files);
  platform.osVersion = linuxOsVersion();
  platform.assertionSummaryCommand = {"/usr/bin/systemd-inhibit", "--list", "--no-pager"};
  return platform;
}

}  // namespace kestrel
