#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace kestrel::bench {

/// Starts a program with standard input on /dev/null and standard output on `outputDescriptor` (/dev/null
/// when -1), with `home` as its home directory and nothing else in its environment but PATH. Ends the
/// benchmark program when it cannot be started.
pid_t startChild(const std::vector<std::string>& arguments, const std::string& home,
                 int outputDescriptor = -1);

/// Waits for its end and returns its user and system time, in seconds.
double waitForChild(pid_t child);

/// Peak resident memory of a running child, in KiB. (What the system tells at its end includes the parent's.)
double peakMemoryOf(pid_t child);

/// CPU time of this process so far, in seconds.
double ownCpuSeconds();

}  // namespace kestrel::bench
