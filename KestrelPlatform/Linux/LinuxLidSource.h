#pragma once

#include <filesystem>
#include <memory>

#include "KestrelCore/Platform/LidSource.h"
#include "KestrelCore/Platform/LogSink.h"
#include "KestrelPlatform/Linux/HardwareServices.h"
#include "KestrelPlatform/Linux/LidFiles.h"

namespace kestrel {

struct LidRoots {
  std::filesystem::path lidButtons = kLidButtonRoot;
  std::filesystem::path inputDevices = kInputRoot;
};

/// The login manager's reading, else UPower's, else the firmware's. Unknown where nothing shows that there is
/// a lid at all. Main thread; the executor must outlive it.
std::unique_ptr<LidSource> makeLinuxLidSource(Executor& executor, std::shared_ptr<LogSink> sink,
                                              std::shared_ptr<HardwareServices> services,
                                              LidRoots roots = {});

}  // namespace kestrel
