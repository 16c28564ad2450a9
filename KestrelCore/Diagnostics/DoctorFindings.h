#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Power/DeepSleepStatus.h"
#include "KestrelCore/Power/PowerSourceSnapshot.h"
#include "KestrelCore/Power/SystemThermalState.h"

namespace kestrel {

class AppCoordinator;

/// What the doctor looks at.
struct DoctorFindings {
  /// The evidence that a hold taken now would begin with.
  std::vector<HoldEvidence> services;
  PowerSourceSnapshot power;
  // Where readings come from; absent when there are none.
  std::optional<std::string> powerSource;
  SystemThermalState thermalState = SystemThermalState::nominal;
  std::optional<std::string> thermalSource;
  std::optional<bool> lidClosed;
  std::optional<std::string> lidSource;
  /// Absent while the helper was not asked yet.
  std::optional<DeepSleepStatus> helper;
  std::optional<std::string> processSource;
  bool hookSocketListens = false;
  std::string hookSocketPath;
  /// Why the stored settings cannot be read; absent when they can, or when nothing is stored yet.
  std::optional<std::string> settingsProblem;
  std::string settingsPath;
  /// The agents whose own records were found, and those whose records may not be read.
  std::vector<std::string> readableLogs;
  std::vector<std::string> unreadableLogs;
};

/// Asks the running application. Looks whether the agents' records may be read, and never into them. Main
/// thread.
DoctorFindings doctorFindings(AppCoordinator& coordinator);

}  // namespace kestrel
