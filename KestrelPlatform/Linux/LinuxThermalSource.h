#pragma once

#include <filesystem>
#include <memory>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/ThermalSource.h"
#include "KestrelPlatform/Linux/ThermalZones.h"

namespace kestrel {

/// The kernel's thermal zones, read every 5 s, every second while one is warm; nominal where there are none.
/// Main thread; the executor must outlive it.
std::unique_ptr<ThermalSource> makeLinuxThermalSource(Executor& executor, std::shared_ptr<LogSink> sink,
                                                      std::filesystem::path root = kThermalRoot);

}  // namespace kestrel
