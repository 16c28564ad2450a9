#include "KestrelPlatform/Linux/HardwareServices.h"

#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/UPowerReading.h"

namespace kestrel {
namespace {

constexpr const char* kUPower = "org.freedesktop.UPower";
constexpr const char* kLoginManager = "org.freedesktop.login1";
constexpr const char* kProfiles = "org.freedesktop.UPower.PowerProfiles";
constexpr const char* kLid = "LidClosed";
constexpr const char* kProfile = "ActiveProfile";
constexpr const char* kOldProfiles = "net.hadess.PowerProfiles";

std::vector<BusProperties::Object> upowerObjects() {
  return {{"/org/freedesktop/UPower", kUPower, {}},
          {"/org/freedesktop/UPower/devices/DisplayDevice", "org.freedesktop.UPower.Device", {}}};
}

bool describesPower(const BusProperties::Objects& objects) {
  return powerFromUPower(objects.at(0), objects.at(1)).has_value();
}

bool tellsOfLid(const BusProperties::Objects& objects) {
  return valueOf<bool>(objects.at(0), kLid).has_value();
}

bool tellsOfProfile(const BusProperties::Objects& objects) {
  return valueOf<std::string>(objects.at(0), kProfile).has_value();
}

}  // namespace

HardwareServices::HardwareServices(Executor& executor, const std::shared_ptr<LogSink>& sink)
    : link_(SdBus::Which::system, executor, Logger(sink, "hardware")),
      upower_(link_, executor, Logger(sink, "battery"), "UPower", kUPower, upowerObjects(), describesPower,
              [this] { upowerChanged_(); }),
      loginManager_(link_, executor, Logger(sink, "lid"), "The login manager's lid", kLoginManager,
                    {{"/org/freedesktop/login1", "org.freedesktop.login1.Manager", kLid}}, tellsOfLid,
                    [this] { loginManagerChanged_(); }),
      profiles_(link_, executor, Logger(sink, "battery"), "The power profile", kProfiles,
                {{"/org/freedesktop/UPower/PowerProfiles", kProfiles, kProfile}}, tellsOfProfile,
                [this] { profilesChanged_(); }),
      oldProfiles_(link_, executor, Logger(sink, "battery"), "The power profile", kOldProfiles,
                   {{"/net/hadess/PowerProfiles", kOldProfiles, kProfile}}, tellsOfProfile,
                   [this] { profilesChanged_(); }) {}

std::optional<PowerSourceDescription> HardwareServices::power() const {
  const auto& objects = upower_.values();
  return objects ? powerFromUPower(objects->at(0), objects->at(1)) : std::nullopt;
}

std::optional<bool> HardwareServices::lidByUPower() const {
  const auto& objects = upower_.values();
  return objects ? lidFromUPower(objects->at(0)) : std::nullopt;
}

std::optional<bool> HardwareServices::lidByLoginManager() const {
  const auto& objects = loginManager_.values();
  return objects ? valueOf<bool>(objects->at(0), kLid) : std::nullopt;
}

std::optional<bool> HardwareServices::isPowerSaving() const {
  for (const BusProperties* each : {&profiles_, &oldProfiles_}) {
    if (each->values()) return valueOf<std::string>(each->values()->at(0), kProfile) == "power-saver";
  }
  return std::nullopt;
}

}  // namespace kestrel
