#pragma once

#include <array>
#include <string_view>

#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

enum class SystemThermalState { nominal, fair, serious, critical };

template <>
struct RawValues<SystemThermalState> {
  static constexpr std::array<std::string_view, 4> table{"nominal", "fair", "serious", "critical"};
};

/// From the platform's levels 0 to 3; any other counts as nominal.
constexpr SystemThermalState thermalStateFromLevel(int level) {
  return level >= 0 && level <= 3 ? static_cast<SystemThermalState>(level) : SystemThermalState::nominal;
}

}  // namespace kestrel
