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
/// "Version 14.4 (Build 23E214)".
std::string macOsVersion();
std::unique_ptr<RunningApplications> makeMacRunningApplications();
/// The standard user defaults of this process.
std::unique_ptr<UserDefaults> makeMacUserDefaults(Executor& mainExecutor,
                                                  const std::shared_ptr<LogSink>& logSink);
/// Only for a program that runs as an application bundle.
std::unique_ptr<UserNotifications> makeMacUserNotifications();
std::unique_ptr<Chime> makeMacChime();
std::unique_ptr<GlobalKeyMonitor> makeMacGlobalKeyMonitor();
std::unique_ptr<LoginItem> makeMacLoginItem();

}  // namespace kestrel
