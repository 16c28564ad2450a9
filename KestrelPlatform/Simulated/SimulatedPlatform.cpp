#include "KestrelPlatform/Simulated/SimulatedPlatform.h"

#include <memory>
#include <utility>

namespace kestrel {
namespace {

template <typename Simulation, typename Place, typename... Arguments>
Simulation* install(Place& place, Arguments... arguments) {
  auto simulation = std::make_unique<Simulation>(arguments...);
  Simulation* handle = simulation.get();
  place = std::move(simulation);
  return handle;
}

}  // namespace

SimulatedPlatform simulatedPlatform(bool lidIsObservable) {
  SimulatedPlatform result;
  Platform& platform = result.platform;
  result.powerAssertions = install<SimulatedPowerAssertions>(platform.powerAssertions);
  result.powerSource = install<SimulatedPowerSource>(platform.powerSource);
  result.lowPowerMode = install<SimulatedLowPowerMode>(platform.lowPowerMode);
  result.thermal = install<SimulatedThermalSource>(platform.thermal);
  result.lid = install<SimulatedLidSource>(platform.lid, lidIsObservable);
  result.processes = install<SimulatedProcessList>(platform.processes);
  result.applications = install<SimulatedRunningApplications>(platform.applications);
  result.userDefaults = install<MemoryUserDefaults>(platform.userDefaults);
  result.peerIdentity = install<SimulatedPeerIdentity>(platform.peerIdentity);
  result.notifications = install<SimulatedUserNotifications>(platform.notifications);
  result.chime = install<SimulatedChime>(platform.chime);
  result.keyMonitor = install<SimulatedGlobalKeyMonitor>(platform.keyMonitor);
  result.loginItem = install<SimulatedLoginItem>(platform.loginItem);
  platform.osVersion = "Simulated";
  return result;
}

}  // namespace kestrel
