#pragma once

#include "KestrelCore/Platform/Platform.h"
#include "KestrelPlatform/Simulated/MemoryUserDefaults.h"
#include "KestrelPlatform/Simulated/SimulatedChime.h"
#include "KestrelPlatform/Simulated/SimulatedGlobalKeyMonitor.h"
#include "KestrelPlatform/Simulated/SimulatedLidSource.h"
#include "KestrelPlatform/Simulated/SimulatedLoginItem.h"
#include "KestrelPlatform/Simulated/SimulatedPeerIdentity.h"
#include "KestrelPlatform/Simulated/SimulatedPowerAssertions.h"
#include "KestrelPlatform/Simulated/SimulatedPowerSource.h"
#include "KestrelPlatform/Simulated/SimulatedProcessList.h"
#include "KestrelPlatform/Simulated/SimulatedRunningApplications.h"
#include "KestrelPlatform/Simulated/SimulatedThermalSource.h"
#include "KestrelPlatform/Simulated/SimulatedUserNotifications.h"

namespace kestrel {

/// A whole platform in memory, and handles for scripting it. The handles point into `platform` and stay good
/// when it is moved on to its owner, as long as that lives.
struct SimulatedPlatform {
  Platform platform;
  SimulatedPowerAssertions* powerAssertions = nullptr;
  SimulatedPowerSource* powerSource = nullptr;
  SimulatedLowPowerMode* lowPowerMode = nullptr;
  SimulatedThermalSource* thermal = nullptr;
  SimulatedLidSource* lid = nullptr;
  SimulatedProcessList* processes = nullptr;
  SimulatedRunningApplications* applications = nullptr;
  MemoryUserDefaults* userDefaults = nullptr;
  SimulatedPeerIdentity* peerIdentity = nullptr;
  SimulatedUserNotifications* notifications = nullptr;
  SimulatedChime* chime = nullptr;
  SimulatedGlobalKeyMonitor* keyMonitor = nullptr;
  SimulatedLoginItem* loginItem = nullptr;
};

SimulatedPlatform simulatedPlatform(bool lidIsObservable = true);

}  // namespace kestrel
