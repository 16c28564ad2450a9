#include <sys/stat.h>
#include <unistd.h>

#include "KestrelCore/Power/DefaultSystemPowerController.h"
#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/PlatformFactory.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

/// The console belongs to whoever is logged in at the screen, and to root while nobody is.
class MacActiveSeat final : public ActiveSeat {
 public:
  std::optional<uid_t> activeUser() const override {
    struct stat status {};
    if (::stat("/dev/console", &status) != 0) return std::nullopt;
    return status.st_uid;
  }
};

class MacSleepRequest final : public SleepRequesting {
 public:
  explicit MacSleepRequest(std::shared_ptr<LogSink> logSink)
      : logger_(std::move(logSink), "lease", kHelperSubsystem) {}

  void sleepForClosedLid() override {
    // With an external display and on mains a closed lid is how a desk is worked at.
    if (readPowerManagementFlag(CFSTR("AppleClamshellCausesSleep")) == false) return;
    const auto result =
        runChildProcess({DefaultSystemPowerController::kPmset, "sleepnow"}, {.timeoutSeconds = 1});
    if (!result || result->status != 0) logger_.error("Failed to execute pmset sleepnow");
  }

 private:
  const Logger logger_;
};

}  // namespace

HelperPlatform makeHelperPlatform(const PlatformContext& context) {
  HelperPlatform platform;
  platform.sleepOverride = std::make_unique<DefaultSystemPowerController>(context.logSink);
  platform.sleep = std::make_unique<MacSleepRequest>(context.logSink);
  platform.powerSource = makeMacPowerSource();
  platform.lowPowerMode = makeMacLowPowerMode();
  platform.thermal = makeMacThermalSource();
  platform.lid = makeMacLidSource();
  platform.seat = std::make_shared<MacActiveSeat>();
  platform.peerIdentity = makePeerIdentity();
  return platform;
}

std::optional<HelperPlaces> helperPlaces() {
  const auto directories = userDirectories();
  if (!directories) return std::nullopt;
  HelperPlaces places = userHelperPlaces(*directories);
  if (::geteuid() != 0) return places;
  places.isSystemWide = true;
  places.socket = directories->systemHelperSocket;
  // Survives a restart of the machine, as the override itself does.
  const auto folder = directories->applicationSupport / "Kestrel" / "helper";
  places.stateFile = folder / "state.json";
  places.lockFile = folder / "kestrel-helper.lock";
  return places;
}

}  // namespace kestrel
