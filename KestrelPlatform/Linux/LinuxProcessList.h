#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/ProcessList.h"

namespace kestrel {

/// Seconds since the machine started, suspension included: the clock of the kernel's start times.
double secondsSinceBoot();

/// Where the list reads, for tests in a folder of their own.
struct LinuxProcessSource {
  std::filesystem::path root = "/proc";
  std::function<double()> secondsSinceBoot = kestrel::secondsSinceBoot;
};

/// Processes with a command line, read from the kernel in ascending order; kernel threads have none. Made to
/// be asked every second: what is known of a process is kept. Its command line is read again by each scan in
/// the first 10 s after its start or a change, because many become another program then, and as long as it is
/// a shell or may be an agent; else every 5 s. Everything is read again every 30 s.
std::unique_ptr<ProcessList> makeLinuxProcessList(const std::shared_ptr<LogSink>& logSink,
                                                  LinuxProcessSource source = {});

}  // namespace kestrel
