#include "KestrelCore/Agents/Adapters/ClaudeCodeAdapter.h"

#include <fmt/format.h>
#include <utility>

#include "KestrelCore/Agents/Adapters/RelayCalls.h"

namespace kestrel {
namespace {

constexpr int kTimeoutSeconds = 5;

struct ClassicHook {
  const char* event;
  const char* state;
};

constexpr ClassicHook kClassicHooks[] = {{"UserPromptSubmit", "working"},
                                         {"PreToolExecution", "working"},
                                         {"PostToolExecution", "working"},
                                         {"Stop", "idle"},
                                         {"SessionEnd", "completed"}};

}  // namespace

ClaudeCodeAdapter::ClaudeCodeAdapter(AdapterEnvironment environment)
    : AgentAdapter(AgentType::claude, std::move(environment)) {}

IntegrationStatus ClaudeCodeAdapter::detect() const {
  const auto executable = inspector().findExecutable("claude", "/Users/vexel/.local/bin/claude");
  const auto& home = inspector().home();
  const bool isActive = inspector().hooksMentionRelay(home / ".claude.json") ||
                        inspector().hooksMentionRelay(home / ".claude/settings.json");
  return status(executable, isActive, "Hook active", "Installed (Hooks not configured)");
}

std::string ClaudeCodeAdapter::setupInstructions() const {
  return "1. Open ~/.claude.json in your text editor.\n"
         "2. Merge the \"hooks\" JSON snippet into your configuration.\n"
         "3. Save the file. Kestrel will automatically track Claude Code lifecycle events.";
}

std::string ClaudeCodeAdapter::manualSetupSnippet(std::string_view relayBinaryPath) const {
  std::string lines;
  for (const auto& [event, state] : kClassicHooks) {
    lines += lines.empty() ? "" : ",\n";
    lines += fmt::format(
        R"(  "{}": [{{ "type": "command", "command": "{} --agent claude --state {}", "timeout": 5000 }}])",
        event, relayBinaryPath, state);
  }
  return "// Add to the \"hooks\" object in ~/.claude.json:\n\"hooks\": {\n" + lines + "\n}";
}

std::vector<AgentSetup> ClaudeCodeAdapter::verifiedSetups(std::string_view relayBinaryPath) const {
  return {{.versions = "Claude Code 2.1",
           .where = "~/.claude/settings.json",
           .what = hooksDocument({"SessionStart", "UserPromptSubmit", "PreToolUse", "PostToolUse",
                                  "PermissionRequest", "Notification", "Stop", "StopFailure", "SessionEnd"},
                                 relayCommand(relayBinaryPath, "claude"), kTimeoutSeconds),
           .how =
               "1. Open ~/.claude/settings.json in your text editor, or create it.\n"
               "2. Merge the \"hooks\" object into it; where an event is listed already, add to its list.\n"
               "3. Save the file. Sessions of Claude Code that start from now on report to Kestrel.",
           .undo = "Remove the entries that call kestrel-relay from ~/.claude/settings.json."}};
}

}  // namespace kestrel
