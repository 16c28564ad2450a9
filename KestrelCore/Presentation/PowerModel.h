#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Policy/PolicyConfiguration.h"
#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Power/DeepSleepStatus.h"
#include "KestrelCore/Power/HoldStatus.h"
#include "KestrelCore/Power/PowerSourceSnapshot.h"
#include "KestrelCore/Power/SystemThermalState.h"
#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

class AppCoordinator;

/// What one service was asked for and says.
struct AssertionRow {
  /// "login manager".
  std::string service;
  /// "Against idle sleep".
  std::string purpose;
  /// "In force", "Asked for", "Refused", "Not available", "Lost".
  std::string stateText;
  /// An identifier, or why not; may be empty.
  std::string detail;
  Tone tone = Tone::normal;

  friend bool operator==(const AssertionRow&, const AssertionRow&) = default;
};

/// The battery as one bar; positions are parts of it, 0 to 1.
struct BatteryBar {
  /// Absent without a reading: the text says why.
  std::optional<double> level;
  /// Protection stops at or below it.
  double floor = 0;
  /// And begins again here.
  double resume = 0;
  /// "82 % · charging".
  std::string text;
  /// "Protection stops at 15 % and resumes at 18 %".
  std::string explanation;
  Tone tone = Tone::normal;

  friend bool operator==(const BatteryBar&, const BatteryBar&) = default;
};

/// One step of the thermal ladder.
struct ThermalStep {
  std::string name;
  bool isCurrent = false;
  /// The current one or below it.
  bool isReached = false;
  Tone tone = Tone::normal;

  friend bool operator==(const ThermalStep&, const ThermalStep&) = default;
};

/// Something with a state in words.
struct PowerFact {
  std::string text;
  /// A second line; may be empty.
  std::string detail;
  Tone tone = Tone::normal;

  friend bool operator==(const PowerFact&, const PowerFact&) = default;
};

struct PowerFacts {
  Date now;
  WakeDecision decision = WakeDecision::release("");
  HoldStatus hold;
  PowerSourceSnapshot power;
  // Where readings come from; absent when there are none.
  std::optional<std::string> powerSource{};
  SystemThermalState thermalState = SystemThermalState::nominal;
  std::optional<std::string> thermalSource{};
  std::optional<bool> lidClosed{};
  std::optional<std::string> lidSource{};
  /// Absent while the helper was not asked yet.
  std::optional<DeepSleepStatus> helper{};
  PolicyConfiguration settings;
};

struct PowerModel {
  /// What is held and why: "Claude Code working"; or that nothing is.
  PowerFact hold;
  std::vector<AssertionRow> assertions;
  BatteryBar battery;
  /// Empty when no sensor says anything, which `thermal` says then.
  std::vector<ThermalStep> thermalLadder;
  PowerFact thermal;
  PowerFact lid;
  PowerFact helper;
  /// "Low Power Mode is on"; absent when it is off.
  std::optional<std::string> lowPower;
  /// Of the settings that belong here, in this order; rows of the settings model.
  std::vector<std::string> settingKeys;

  friend bool operator==(const PowerModel&, const PowerModel&) = default;
};

PowerModel powerModel(const PowerFacts& facts);

/// The facts of the moment. Main thread.
PowerFacts powerFacts(AppCoordinator& coordinator);

}  // namespace kestrel
