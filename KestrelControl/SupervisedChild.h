#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestrel {

/// A command run in the foreground, as if this program were not there: it has the terminal and this process's
/// group, and signals that are sent to this process alone reach it too.
class SupervisedChild {
 public:
  /// How it ended.
  struct Outcome {
    /// Of the command; 127 when it was not found, 126 when it could not be started; 128 and the signal's
    /// number when one ended it.
    int exitStatus = 0;
    /// Present when it could not be started: why.
    std::string problem;
    /// The signal that ended it; 0 without one.
    int signal = 0;
  };

  /// The first word is the command, looked for in the search path.
  explicit SupervisedChild(std::vector<std::string> words) : words_(std::move(words)) {}

  /// Waits for its end, and calls back every `intervalSeconds` meanwhile. Once per process: it handles the
  /// process's signals.
  Outcome run(int intervalSeconds, const std::function<void()>& onInterval);

 private:
  const std::vector<std::string> words_;
};

}  // namespace kestrel
