#pragma once

#include <optional>

#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelPlatform/Linux/BusValues.h"

namespace kestrel {

// What UPower's properties mean. Pure.

/// From the properties of the daemon and of its display device, which stands for all batteries. Absent when
/// they do not say even whether there is a battery.
std::optional<PowerSourceDescription> powerFromUPower(const BusValues& daemon, const BusValues& display);

/// Whether the lid is closed; absent when the daemon sees no lid.
std::optional<bool> lidFromUPower(const BusValues& daemon);

}  // namespace kestrel
