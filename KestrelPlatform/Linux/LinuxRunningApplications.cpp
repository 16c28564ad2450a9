#include "KestrelPlatform/Linux/LinuxRunningApplications.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "KestrelCore/Support/AsciiCase.h"
#include "KestrelPlatform/Linux/DesktopEntries.h"

namespace kestrel {
namespace {

constexpr double kEntriesIntervalSeconds = 60;

struct Editor {
  /// The file name of its program, in lower case.
  std::string_view program;
  std::string_view name;
};

constexpr std::array<Editor, 4> kEditors{{
    {"cursor", "Cursor"},
    {"windsurf", "Windsurf"},
    {"windsurf-next", "Windsurf"},
    {"antigravity", "Antigravity"},
}};

/// The editor whose program a command line names.
const Editor* editorOf(std::string_view commandLine) {
  const auto path = commandLine.substr(0, commandLine.find(' '));
  const auto fileName = path.substr(path.rfind('/') + 1);
  for (const auto& editor : kEditors) {
    if (fileName.size() == editor.program.size() && lowerCased(fileName) == editor.program) return &editor;
  }
  return nullptr;
}

/// Editors start themselves again, for windows and for scripts such as language servers and their own
/// command-line tool.
bool isHelper(std::string_view commandLine) {
  const auto blank = commandLine.find(' ');
  if (blank == std::string_view::npos) return false;
  const auto arguments = commandLine.substr(blank);
  const auto contains = [arguments](std::string_view part) {
    return arguments.find(part) != std::string_view::npos;
  };
  const auto firstArgument = arguments.substr(1, arguments.find(' ', 1) - 1);
  return contains(" --type=") || contains(" --node-ipc") || contains("electron-run-as-node") ||
         firstArgument.ends_with(".js");
}

class LinuxRunningApplications final : public RunningApplications {
 public:
  LinuxRunningApplications(std::vector<std::filesystem::path> applicationsFolders,
                           std::shared_ptr<const Clock> clock)
      : folders_(std::move(applicationsFolders)), clock_(std::move(clock)) {}

  std::vector<RunningApplication> list(const std::vector<ProcessRow>& processes) override {
    std::vector<RunningApplication> applications;
    for (const auto& process : processes) {
      const Editor* editor = editorOf(process.commandLine);
      if (editor == nullptr || isHelper(process.commandLine) || isStartedBy(editor, process, processes)) {
        continue;
      }
      applications.push_back(describe(*editor, process.pid));
    }
    return applications;
  }

 private:
  /// Whether the process's parent is the same editor.
  static bool isStartedBy(const Editor* editor, const ProcessRow& process,
                          const std::vector<ProcessRow>& processes) {
    if (!process.parentPid) return false;
    const auto parent = std::ranges::find(processes, *process.parentPid, &ProcessRow::pid);
    return parent != processes.end() && editorOf(parent->commandLine) == editor;
  }

  RunningApplication describe(const Editor& editor, std::int32_t pid) {
    readEntriesIfDue();
    RunningApplication application{std::string(editor.name), std::nullopt, pid};
    const auto entry =
        std::ranges::find_if(entries_, [&](const auto& each) { return each.program == editor.program; });
    if (entry == entries_.end()) return application;
    application.bundleIdentifier = entry->id;
    // A name that somebody gave it would not be recognised.
    if (lowerCased(entry->name).find(lowerCased(editor.name)) != std::string::npos) {
      application.localizedName = entry->name;
    }
    return application;
  }

  void readEntriesIfDue() {
    const Date now = clock_->now();
    if (entriesReadAt_ && now >= *entriesReadAt_ && now - *entriesReadAt_ < kEntriesIntervalSeconds) return;
    entriesReadAt_ = now;
    std::vector<std::string_view> programs;
    for (const auto& editor : kEditors) programs.push_back(editor.program);
    entries_ = installedEntries(folders_, programs);
  }

  const std::vector<std::filesystem::path> folders_;
  const std::shared_ptr<const Clock> clock_;
  std::vector<DesktopEntry> entries_;
  std::optional<Date> entriesReadAt_;
};

}  // namespace

std::unique_ptr<RunningApplications> makeLinuxRunningApplications(
    std::vector<std::filesystem::path> applicationsFolders, std::shared_ptr<const Clock> clock) {
  return std::make_unique<LinuxRunningApplications>(std::move(applicationsFolders), std::move(clock));
}

}  // namespace kestrel
