#pragma once

#include <memory>

#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Platform/LidSource.h"
#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/PeerIdentity.h"
#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelCore/Platform/ProcessList.h"
#include "KestrelCore/Platform/RunningApplications.h"
#include "KestrelCore/Platform/ThermalSource.h"
#include "KestrelCore/Platform/UserDefaults.h"

namespace kestrel {

/// Everything the core asks of the outside, made by one factory per system and owned by the program's edge.
/// Its executor must outlive it.
struct Platform {
  std::unique_ptr<PowerAssertions> powerAssertions;
  std::unique_ptr<PowerSource> powerSource;
  std::unique_ptr<LowPowerMode> lowPowerMode;
  std::unique_ptr<ThermalSource> thermal;
  std::unique_ptr<LidSource> lid;
  std::unique_ptr<ProcessList> processes;
  std::unique_ptr<RunningApplications> applications;
  std::unique_ptr<UserDefaults> userDefaults;
  std::shared_ptr<const PeerIdentity> peerIdentity;
};

}  // namespace kestrel
