#pragma once

#include <filesystem>
#include <memory>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelPlatform/Linux/HardwareServices.h"
#include "KestrelPlatform/Linux/SysfsPowerSupplies.h"

namespace kestrel {

/// UPower's readings, or the kernel's where there is no UPower. A change of the low-power mode is also told
/// as one of the power source, whose readers ask for it then. Main thread; the executor must outlive it.
std::unique_ptr<PowerSource> makeLinuxPowerSource(Executor& executor, std::shared_ptr<LogSink> sink,
                                                  std::shared_ptr<HardwareServices> services,
                                                  std::filesystem::path root = kPowerSupplyRoot);

}  // namespace kestrel
