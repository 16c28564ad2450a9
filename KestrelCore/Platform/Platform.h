#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KestrelCore/Platform/Chime.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Platform/GlobalKeyMonitor.h"
#include "KestrelCore/Platform/LidSource.h"
#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/LoginItem.h"
#include "KestrelCore/Platform/PeerIdentity.h"
#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelCore/Platform/ProcessList.h"
#include "KestrelCore/Platform/RunningApplications.h"
#include "KestrelCore/Platform/ThermalSource.h"
#include "KestrelCore/Platform/UserDefaults.h"
#include "KestrelCore/Platform/UserNotifications.h"

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
  std::unique_ptr<UserNotifications> notifications;
  std::unique_ptr<Chime> chime;
  std::unique_ptr<GlobalKeyMonitor> keyMonitor;
  std::unique_ptr<LoginItem> loginItem;
  /// The system's name and version, for reports.
  std::string osVersion;
  /// What lists everything that keeps this machine awake, by its absolute path; empty where nothing does.
  std::vector<std::string> assertionSummaryCommand;
};

}  // namespace kestrel
