#include <cstdlib>
#include <memory>
#include <systemd/sd-login.h>
#include <unistd.h>
#include <utility>

#include "KestrelPlatform/Linux/HardwareServices.h"
#include "KestrelPlatform/Linux/LinuxLidSource.h"
#include "KestrelPlatform/Linux/LinuxLowPowerMode.h"
#include "KestrelPlatform/Linux/LinuxPowerSource.h"
#include "KestrelPlatform/Linux/LinuxSleepOverride.h"
#include "KestrelPlatform/Linux/LinuxThermalSource.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

/// The seat that has the machine's own screen, keyboard and lid.
constexpr const char* kSeat = "seat0";
constexpr const char* kRunFolder = "/run/kestrel-helper";

/// Reads a small file of the login manager.
class LinuxActiveSeat final : public ActiveSeat {
 public:
  [[nodiscard]] std::optional<uid_t> activeUser() const override {
    uid_t user = 0;
    char* session = nullptr;
    const int status = ::sd_seat_get_active(kSeat, &session, &user);
    std::free(session);
    return status >= 0 && session != nullptr ? std::optional(user) : std::nullopt;
  }
};

/// The login manager looks at the lid again as soon as nothing inhibits that any more.
class LinuxSleepRequest final : public SleepRequesting {
 public:
  void sleepForClosedLid() override {}
};

}  // namespace

HelperPlatform makeHelperPlatform(const PlatformContext& context) {
  const auto& sink = context.logSink;
  const auto hardware = std::make_shared<HardwareServices>(context.mainExecutor, sink);
  HelperPlatform platform;
  platform.sleepOverride = makeLinuxSleepOverride(context.mainExecutor, sink);
  platform.sleep = std::make_unique<LinuxSleepRequest>();
  platform.powerSource = makeLinuxPowerSource(context.mainExecutor, sink, hardware);
  platform.lowPowerMode = makeLinuxLowPowerMode(hardware);
  platform.thermal = makeLinuxThermalSource(context.mainExecutor, sink);
  platform.lid = makeLinuxLidSource(context.mainExecutor, sink, hardware);
  platform.seat = std::make_shared<LinuxActiveSeat>();
  platform.peerIdentity = makePeerIdentity();
  return platform;
}

std::optional<HelperPlaces> helperPlaces() {
  if (::geteuid() != 0) {
    const auto user = userDirectories();
    return user ? std::optional(userHelperPlaces(*user)) : std::nullopt;
  }
  // Services have no home; nothing outside of this folder, which a restart of the machine empties, is
  // written.
  HelperPlaces places;
  Directories& directories = places.directories;
  directories.home = "/root";
  directories.applicationSupport = directories.logs = directories.preferences = directories.temporary =
      kRunFolder;
  directories.runtimePrefixes = {"/var/run/kestrel", "/run/kestrel"};
  places.isSystemWide = true;
  places.socket = directories.systemHelperSocket;
  places.stateFile = std::filesystem::path(kRunFolder) / "state.json";
  places.lockFile = std::filesystem::path(kRunFolder) / "kestrel-helper.lock";
  return places;
}

}  // namespace kestrel
