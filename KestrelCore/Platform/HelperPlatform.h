#pragma once

#include <filesystem>
#include <memory>

#include "KestrelCore/Platform/ActiveSeat.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Platform/LidSource.h"
#include "KestrelCore/Platform/PeerIdentity.h"
#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelCore/Platform/SleepRequesting.h"
#include "KestrelCore/Platform/SystemPowerControlling.h"
#include "KestrelCore/Platform/ThermalSource.h"

namespace kestrel {

/// What the helper asks of the outside, made by one factory per system. Its executor must outlive it.
struct HelperPlatform {
  std::unique_ptr<SystemPowerControlling> sleepOverride;
  std::unique_ptr<SleepRequesting> sleep;
  std::unique_ptr<PowerSource> powerSource;
  std::unique_ptr<LowPowerMode> lowPowerMode;
  std::unique_ptr<ThermalSource> thermal;
  std::unique_ptr<LidSource> lid;
  std::shared_ptr<const ActiveSeat> seat;
  std::shared_ptr<const PeerIdentity> peerIdentity;
};

/// Where the helper keeps its files.
struct HelperPlaces {
  /// It serves the user at the machine, whoever that is, and not only the user who runs it.
  bool isSystemWide = false;
  Directories directories;
  std::filesystem::path socket;
  std::filesystem::path stateFile;
  /// Held while a helper uses the other two.
  std::filesystem::path lockFile;
};

/// Of a helper that serves only the user who runs it.
inline HelperPlaces userHelperPlaces(const Directories& directories) {
  const std::filesystem::path run = directories.runDirectory();
  return {false, directories, directories.userHelperSocket(), run / "helper-state.json",
          run / "kestrel-helper.lock"};
}

}  // namespace kestrel
