#pragma once

#include <optional>
#include <string>

#include "KestrelCore/Power/PowerSourceSnapshot.h"
#include "KestrelCore/Power/SystemThermalState.h"
#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

/// One of the figures of the machine in one line.
struct PowerFigure {
  std::string text;
  Tone tone = Tone::normal;
  /// May be empty.
  std::string details{};

  friend bool operator==(const PowerFigure&, const PowerFigure&) = default;
};

/// Power, heat and Low Power Mode.
struct PowerStripModel {
  enum class Supply { unknown, mains, charging, battery };

  Supply supply = Supply::unknown;
  /// "82 % charging", "82 % on battery", "No battery", "Power unknown".
  PowerFigure power;
  /// "nominal", "heat unknown".
  PowerFigure heat;
  /// "Low Power off".
  PowerFigure lowPower;

  friend bool operator==(const PowerStripModel&, const PowerStripModel&) = default;
};

struct PowerStripFacts {
  /// Absent when nothing tells of it.
  std::optional<PowerSourceSnapshot> power;
  std::optional<SystemThermalState> heat;
  /// The level of the battery alone keeps the machine from being held.
  bool isBatteryTooLow = false;
};

PowerStripModel powerStripModel(const PowerStripFacts& facts);

}  // namespace kestrel
