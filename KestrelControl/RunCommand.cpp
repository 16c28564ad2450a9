#include "KestrelControl/RunCommand.h"

#include <csignal>
#include <filesystem>
#include <string>
#include <sys/resource.h>
#include <system_error>
#include <unistd.h>

#include "KestrelControl/KestrelSockets.h"
#include "KestrelControl/Output.h"
#include "KestrelControl/SupervisedChild.h"
#include "KestrelCore/Support/Clock.h"

namespace kestrel {
namespace {

/// A session that says nothing for 900 s counts as stale.
constexpr int kRefreshSeconds = 300;

class RunSession {
 public:
  explicit RunSession(const Directories& directories) : directories_(directories) {}

  [[nodiscard]] bool report(AgentState state) const {
    HookEvent event;
    event.agent = AgentType::custom;
    event.sessionId = "run-" + std::to_string(getpid());
    event.state = state;
    event.timestamp = SystemClock().now();
    std::error_code error;
    if (const auto folder = std::filesystem::current_path(error); !error) event.cwd = folder.string();
    return reportToKestrel(directories_, event);
  }

 private:
  const Directories& directories_;
};

/// Ends this process as the command was ended, so that a calling shell sees the same; without a second core
/// file. Returns when the signal does not end it.
void endBySignal(int number) {
  const rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
  std::signal(number, SIG_DFL);
  std::raise(number);
}

}  // namespace

int runRunCommand(const RunOptions& options, const Directories& directories) {
  const RunSession session(directories);
  if (!session.report(AgentState::working))
    complain("Kestrel is not running: nothing keeps this machine awake");
  SupervisedChild child(options.words);
  // A Kestrel that has been started meanwhile takes the session up, too.
  const auto outcome = child.run(kRefreshSeconds, [&] { (void)session.report(AgentState::working); });
  (void)session.report(AgentState::completed);
  if (!outcome.problem.empty()) complain(options.words.front() + ": " + outcome.problem);
  if (outcome.signal != 0) endBySignal(outcome.signal);
  return outcome.exitStatus;
}

}  // namespace kestrel
