#pragma once

#include <memory>

#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelPlatform/Linux/HardwareServices.h"

namespace kestrel {

/// The power profile "power-saver"; off where there is no service for profiles. The power source tells of
/// changes. Main thread.
std::unique_ptr<LowPowerMode> makeLinuxLowPowerMode(std::shared_ptr<HardwareServices> services);

}  // namespace kestrel
