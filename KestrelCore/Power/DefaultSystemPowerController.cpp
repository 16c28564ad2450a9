#include "KestrelCore/Power/DefaultSystemPowerController.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "KestrelCore/Support/ChildProcess.h"

namespace kestrel {
namespace {

constexpr ChildProcessLimits kLimits{.timeoutSeconds = 1, .maximumOutputBytes = 64 * 1024};
/// Stands for the status of a tool that did not start, or did not end in time.
constexpr int kNoStatus = -1;

bool saysSleepDisabled(const std::string& line) {
  std::istringstream words(line);
  std::string key;
  std::string value;
  return words >> key >> value && key.starts_with("disablesleep") && value == "1";
}

}  // namespace

DefaultSystemPowerController::DefaultSystemPowerController(std::shared_ptr<LogSink> sink, std::string pmset)
    : logger_(std::move(sink), "lease", kHelperSubsystem), pmset_(std::move(pmset)) {}

bool DefaultSystemPowerController::readSleepDisabled() {
  const auto result = runChildProcess({pmset_, "-g", "custom"}, kLimits);
  if (!result || result->outputWasCut) return false;
  std::istringstream lines(result->output);
  for (std::string line; std::getline(lines, line);) {
    if (saysSleepDisabled(line)) return true;
  }
  return false;
}

void DefaultSystemPowerController::writeSleepDisabled(bool disabled) {
  const int digit = disabled ? 1 : 0;
  const auto result = runChildProcess({pmset_, "-a", "disablesleep", std::to_string(digit)}, kLimits);
  const int status = result ? result->status : kNoStatus;
  if (status == 0) {
    logger_.info("Executed pmset -a disablesleep {}", digit);
  } else {
    logger_.error("Failed to execute pmset -a disablesleep {}, status: {}", digit, status);
  }
}

}  // namespace kestrel
