#include "KestrelPlatform/Simulated/SimulatedHelperPlatform.h"

#include <memory>
#include <utility>

namespace kestrel {
namespace {

template <typename Simulation, typename Place>
Simulation* install(Place& place) {
  auto simulation = std::make_unique<Simulation>();
  Simulation* handle = simulation.get();
  place = std::move(simulation);
  return handle;
}

}  // namespace

SimulatedHelperPlatform simulatedHelperPlatform() {
  SimulatedHelperPlatform result;
  HelperPlatform& platform = result.platform;
  result.sleepOverride = install<SimulatedSleepOverride>(platform.sleepOverride);
  result.sleep = install<SimulatedSleepRequest>(platform.sleep);
  result.powerSource = install<SimulatedPowerSource>(platform.powerSource);
  install<SimulatedLowPowerMode>(platform.lowPowerMode);
  result.thermal = install<SimulatedThermalSource>(platform.thermal);
  result.lid = install<SimulatedLidSource>(platform.lid);
  result.seat = install<SimulatedActiveSeat>(platform.seat);
  result.peerIdentity = install<SimulatedPeerIdentity>(platform.peerIdentity);
  return result;
}

}  // namespace kestrel
