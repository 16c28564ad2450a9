#include "KestrelCore/Agents/ProcessMonitor.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KestrelCore/Agents/ProcessMatching.h"
#include "KestrelCore/Support/AsciiCase.h"

namespace kestrel {
namespace {

/// Whether an application goes by that name, in its own name or its bundle identifier, whatever the case.
bool goesBy(const RunningApplication& application, std::string_view name) {
  const auto holds = [name](const std::optional<std::string>& text) {
    return text && lowerCased(*text).find(name) != std::string::npos;
  };
  return holds(application.localizedName) || holds(application.bundleIdentifier);
}

std::optional<ProcessMatch> matchEditor(const RunningApplication& application) {
  if (!application.localizedName) return std::nullopt;
  const auto match = [&](AgentType agent, const char* command) {
    return ProcessMatch{agent, application.pid, *application.localizedName, true, false, command};
  };
  if (goesBy(application, "cursor")) return match(AgentType::cursor, "Cursor IDE");
  if (goesBy(application, "windsurf")) return match(AgentType::windsurf, "Windsurf IDE");
  return std::nullopt;
}

std::optional<ProcessMatch> matchAntigravity(const std::vector<RunningApplication>& applications,
                                             const AgentFootprints& footprints, Date now) {
  const auto application =
      std::ranges::find_if(applications, [](const auto& each) { return goesBy(each, "antigravity"); });
  const auto state = footprints.antigravityState(application != applications.end(), now);
  if (!state.isRunning) return std::nullopt;
  return ProcessMatch{AgentType::antigravity, application->pid, "Antigravity", true,
                      state.isWorking,        state.description};
}

/// The commands of Claude Code's shell tool among the processes.
class ShellTools {
 public:
  explicit ShellTools(const std::vector<ProcessRow>& rows) {
    for (const auto& row : rows) {
      if (row.commandLine.find("/.claude/shell-snapshots/") != std::string::npos) {
        parents_.push_back(row.parentPid);
      }
    }
  }

  /// Whether one runs below that process. Where the listing tells no parents, any counts.
  [[nodiscard]] bool runBelow(std::int32_t pid) const {
    return std::ranges::any_of(parents_, [pid](const auto& parent) { return parent.value_or(pid) == pid; });
  }

 private:
  std::vector<std::optional<std::int32_t>> parents_;
};

}  // namespace

ProcessMonitor::ProcessMonitor(ProcessList& processes, RunningApplications& applications,
                               AgentFootprints footprints, std::int32_t ownPid,
                               std::shared_ptr<const Clock> clock)
    : processes_(processes),
      applications_(applications),
      footprints_(std::move(footprints)),
      ownPid_(ownPid),
      clock_(std::move(clock)) {}

ProcessMonitor::~ProcessMonitor() {
  stop();
}

void ProcessMonitor::setOnProcessesUpdated(Callback callback) {
  onProcessesUpdated_ = std::move(callback);
}

void ProcessMonitor::start(double intervalSeconds) {
  stop();
  timer_ = queue_.repeat(0, intervalSeconds, [this] { poll(); });
}

void ProcessMonitor::stop() {
  timer_.reset();
}

void ProcessMonitor::poll() {
  auto matches = scanProcesses();
  if (onProcessesUpdated_) onProcessesUpdated_(std::move(matches));
}

std::vector<ProcessMatch> ProcessMonitor::scanProcesses() {
  const Date now = clock_->now();
  const auto listing = processes_.rows();
  const std::vector<ProcessRow> none;
  const auto& rows = listing ? *listing : none;
  const auto applications = applications_.list(rows);

  std::vector<ProcessMatch> matches;
  if (auto match = matchAntigravity(applications, footprints_, now)) matches.push_back(std::move(*match));
  for (const auto& application : applications) {
    if (auto match = matchEditor(application)) matches.push_back(std::move(*match));
  }
  std::optional<ShellTools> shellTools;
  for (const auto& row : rows) {
    if (row.pid == ownPid_) continue;
    auto match = matchCommandLine(row);
    if (!match) continue;
    if (isBareClaude(row.commandLine)) {
      if (!shellTools) shellTools.emplace(rows);
      match->isWorking = shellTools->runBelow(row.pid) || footprints_.isClaudeWriting(now);
    }
    matches.push_back(std::move(*match));
  }
  return matches;
}

}  // namespace kestrel
