#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <memory>
#include <optional>

#include "KestrelCore/Platform/Platform.h"

namespace kestrel {

// One factory per backend; each class lives in the file that is named after it.

std::unique_ptr<PowerAssertions> makeMacPowerAssertions(Executor& mainExecutor,
                                                        const std::shared_ptr<LogSink>& logSink);
std::unique_ptr<PowerSource> makeMacPowerSource();
std::unique_ptr<LowPowerMode> makeMacLowPowerMode();
std::unique_ptr<ThermalSource> makeMacThermalSource();
std::unique_ptr<LidSource> makeMacLidSource();
/// A truth value of the kernel's power management; absent when it has none of that name.
std::optional<bool> readPowerManagementFlag(CFStringRef key);
std::unique_ptr<RunningApplications> makeMacRunningApplications();
/// The standard user defaults of this process.
std::unique_ptr<UserDefaults> makeMacUserDefaults(Executor& mainExecutor,
                                                  const std::shared_ptr<LogSink>& logSink);

}  // namespace kestrel
