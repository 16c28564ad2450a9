#pragma once

#include <memory>

#include "KestrelCore/Platform/LidSource.h"
#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelCore/Platform/ThermalSource.h"

namespace kestrel {

// For machines that do not tell. Each answers "unknown", cannot be observed, and says so once in the log, at
// the first reading.

std::unique_ptr<PowerSource> makeUnavailablePowerSource(std::shared_ptr<LogSink> sink);
std::unique_ptr<LowPowerMode> makeUnavailableLowPowerMode(std::shared_ptr<LogSink> sink);
std::unique_ptr<ThermalSource> makeUnavailableThermalSource(std::shared_ptr<LogSink> sink);
std::unique_ptr<LidSource> makeUnavailableLidSource(std::shared_ptr<LogSink> sink);

}  // namespace kestrel
