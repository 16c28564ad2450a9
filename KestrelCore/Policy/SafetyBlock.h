#pragma once

#include <array>
#include <string_view>

#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// Why protection is forbidden. The raw value is also the text for people.
enum class SafetyBlock {
  masterDisabled,
  paused,
  batteryBelowFloor,
  acDisconnected,
  thermalCritical,
  manualSleepRequested
};

template <>
struct RawValues<SafetyBlock> {
  static constexpr std::array<std::string_view, 6> table{"Master switch disabled",
                                                         "Protection paused",
                                                         "Battery level below safety cutoff",
                                                         "AC power disconnected (AC-only mode)",
                                                         "Thermal critical safety cutoff",
                                                         "Manual system sleep requested"};
};

constexpr bool isCriticalSafety(SafetyBlock block) {
  return block == SafetyBlock::batteryBelowFloor || block == SafetyBlock::thermalCritical ||
         block == SafetyBlock::manualSleepRequested;
}

}  // namespace kestrel
