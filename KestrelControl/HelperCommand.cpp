#include "KestrelControl/HelperCommand.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <optional>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

#include "KestrelControl/Output.h"
#include "KestrelControl/SiblingProgram.h"
#include "KestrelControl/StatusText.h"
#include "KestrelCore/Control/StatusReport.h"
#include "KestrelCore/Power/DeepSleepController.h"
#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/StreamLogSink.h"
#include "KestrelPlatform/HelperInstallation.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

constexpr double kStepTimeoutSeconds = 60;
constexpr int kStartAttempts = 50;
constexpr auto kStartPause = std::chrono::milliseconds(100);

struct HelperPlace {
  const char* title;
  const char* key;
  fs::path socket;

  [[nodiscard]] std::optional<DeepSleepStatus> ask() const {
    const auto response = DeepSleepController::sendStaticRequest({HelperCommand::status, {}, {}}, socket);
    return response ? response->status : std::nullopt;
  }
  /// Why there is no answer.
  [[nodiscard]] std::string silence() const {
    std::error_code error;
    return fs::exists(socket, error) ? "does not answer, or refuses this user"
                                     : "not installed, or not running";
  }
};

HelperPlace placeOf(const Directories& directories, bool forWholeMachine) {
  return forWholeMachine ? HelperPlace{"Whole machine:", "wholeMachine", directories.systemHelperSocket}
                         : HelperPlace{"This user:", "user", directories.userHelperSocket()};
}

int showStatus(const Directories& directories, bool asJson) {
  Json report = Json::object();
  std::string text;
  bool answers = false;
  for (const bool forWholeMachine : {true, false}) {
    const HelperPlace place = placeOf(directories, forWholeMachine);
    const auto status = place.ask();
    answers = answers || status;
    report[place.key] = status ? readableHelperStatus(*status) : Json(nullptr);
    const std::string words = status ? helperText(report[place.key], SystemClock().now()) : place.silence();
    text += fmt::format("{:<15}{}\n", place.title, words);
  }
  const int status = print(asJson ? report.dump(2) + "\n" : text);
  return answers ? status : kControlFailed;
}

/// Shows a command and runs it; what it complains about is shown too.
bool runStep(const HelperInstallation::Step& step) {
  std::string shown;
  // The shell finds the command and puts both outputs in one; it sees the words as words.
  std::vector<std::string> command{"/bin/sh", "-c", "exec 2>&1; exec \"$@\"", "sh"};
  for (const auto& word : step.command) {
    shown += (shown.empty() ? "" : " ") + word;
    command.push_back(word);
  }
  std::printf("  %s\n", shown.c_str());
  std::fflush(stdout);
  const auto result = runChildProcess(command, {kStepTimeoutSeconds, 65'536});
  if (result && result->status == 0) return true;
  if (step.mayFail) return true;
  std::printf("%s", result ? printable(result->output).c_str() : "  it did not end in time\n");
  return false;
}

bool runSteps(const std::vector<HelperInstallation::Step>& steps) {
  for (const auto& step : steps) {
    if (!runStep(step)) return false;
  }
  return true;
}

/// What is in the way, in words; empty when nothing is.
std::string obstacle(const HelperOptions& options) {
  const bool isRoot = ::geteuid() == 0;
  if (!options.forThisUser && !isRoot) {
    return std::string("this needs root, because the helper for the whole machine runs as root:\n  sudo ") +
           "kestrelctl helper " + options.verb +
           (HelperInstallation::servesSingleUsers()
                ? "\nA helper for this user alone needs no root, and is enough where the desktop does not\n"
                  "handle the lid itself:\n  kestrelctl helper " +
                      options.verb + " --user"
                : "");
  }
  if (options.forThisUser && isRoot) return "--user is for users; root's helper serves the whole machine";
  if (options.forThisUser && !HelperInstallation::servesSingleUsers())
    return "on this system only root's helper can keep the machine awake";
  return {};
}

int install(const HelperInstallation& installation, const HelperPlace& place) {
  const auto sink = makeStreamLogSink(STDERR_FILENO, LogLineStyle::terminal, std::make_shared<SystemClock>());
  const auto policy = std::make_shared<KestrelWritePolicy>(installation.directories, sink);
  const AtomicFileWriter files(policy, Logger(sink, "files"));
  // In a folder that nobody else writes to.
  const fs::path serviceFile = place.socket.parent_path() / "kestrel-helper.service";
  if (!installation.isPackaged() && !files.write(serviceFile, installation.serviceText()))
    return complain("the service's description cannot be written");
  const bool done = runSteps(installation.installSteps(serviceFile));
  if (!installation.isPackaged()) (void)files.remove(serviceFile);
  if (!done) return complain("the helper is not installed: the last command above failed");
  for (int attempt = 0; attempt < kStartAttempts; ++attempt) {
    if (place.ask()) {
      std::puts("The helper answers. A Kestrel that was started before has to be started again to use it.");
      return kControlDone;
    }
    std::this_thread::sleep_for(kStartPause);
  }
  return complain("the helper was installed, but does not answer at " + place.socket.string());
}

int uninstall(const HelperInstallation& installation, const HelperPlace& place) {
  // It ends its hold, removes its socket and goes.
  (void)DeepSleepController::sendStaticRequest({HelperCommand::uninstall, {}, {}}, place.socket);
  if (!runSteps(installation.uninstallSteps()))
    return complain("the helper is not removed: the last command above failed");
  std::puts(installation.isPackaged() ? "The helper is switched off; its package can be removed."
                                      : "The helper is removed.");
  return kControlDone;
}

}  // namespace

int runHelperCommand(const HelperOptions& options, const Directories& directories,
                     const std::string& ownPath) {
  if (options.verb == "status") return showStatus(directories, options.json);
  if (const std::string problem = obstacle(options); !problem.empty()) return complain(problem);
  const HelperPlace place = placeOf(directories, !options.forThisUser);
  const auto helper = siblingProgram(ownPath, "kestrel-helper", "../libexec/kestrel");
  const HelperInstallation installation{!options.forThisUser, directories, helper.value_or(fs::path())};
  if (options.verb == "uninstall") return uninstall(installation, place);
  if (!helper && !installation.isPackaged()) return complain("there is no kestrel-helper beside kestrelctl");
  return install(installation, place);
}

}  // namespace kestrel
