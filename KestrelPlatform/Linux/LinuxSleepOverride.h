#pragma once

#include <filesystem>
#include <memory>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/SystemPowerControlling.h"
#include "KestrelCore/Support/Executor.h"

namespace kestrel {

/// Switches sleep off with the login manager's block inhibitors against sleep and against its handling of the
/// lid, which end with this process. Sleep counts as off when both were read back from the login manager, or
/// when the machine's owner masked the units for it. Never blocks: the switch is thrown when the login
/// manager has answered, and again when that starts anew. Main thread; the executor must outlive it. Unit
/// files are looked for below `root`.
std::unique_ptr<SystemPowerControlling> makeLinuxSleepOverride(Executor& executor,
                                                               std::shared_ptr<LogSink> sink,
                                                               std::filesystem::path root = "/");

}  // namespace kestrel
