#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

/// How a child process ended and what it wrote.
struct ChildProcessResult {
  /// The exit status, or 128 + the number of the signal that ended it.
  int status = 0;
  /// Standard output, cut at the limit.
  std::string output;
  bool outputWasCut = false;
};

struct ChildProcessLimits {
  double timeoutSeconds = 5;
  std::size_t maximumOutputBytes = 8 * 1024 * 1024;
};

/// Runs a program by its absolute path, without a shell, with standard input and standard error on /dev/null,
/// and waits for it. Kills it when the time is over or it writes more than the limit. Absent when it cannot
/// be started or the time was over. Blocks, so never call it on the main thread.
std::optional<ChildProcessResult> runChildProcess(const std::vector<std::string>& arguments,
                                                  const ChildProcessLimits& limits = {});

}  // namespace kestrel
