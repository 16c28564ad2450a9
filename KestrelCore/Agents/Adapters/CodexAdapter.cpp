#include "KestrelCore/Agents/Adapters/CodexAdapter.h"

#include <fmt/format.h>
#include <utility>

#include "KestrelCore/Agents/Adapters/RelayCalls.h"

namespace kestrel {
namespace {

/// Codex warns of more for its events Interrupt and SessionEnd.
constexpr int kTimeoutSeconds = 3;

AgentSetup hooksSetup(std::string_view relayBinaryPath) {
  return {.versions = "Codex CLI with hooks, as in 0.169",
          .where = "~/.codex/hooks.json",
          .what = hooksDocument({"SessionStart", "UserPromptSubmit", "PreToolUse", "PermissionRequest",
                                 "PostToolUse", "Stop", "Interrupt", "SessionEnd"},
                                relayCommand(relayBinaryPath, "codex"), kTimeoutSeconds),
          .how =
              "1. Open ~/.codex/hooks.json in your text editor, or create it.\n"
              "2. Merge the \"hooks\" object into it; where an event is listed already, add to its list.\n"
              "3. Save the file. Remove a notify line that calls kestrel-relay from ~/.codex/config.toml:\n"
              "   it may report the end of a turn as work.\n"
              "4. Start Codex and trust the hooks when it asks, or type /hooks there.",
          .undo = "Remove the entries that call kestrel-relay from ~/.codex/hooks.json."};
}

AgentSetup notifySetup(std::string_view relayBinaryPath) {
  return {.versions = "Codex CLI without hooks",
          .where = "~/.codex/config.toml",
          .what = fmt::format(R"(notify = [{}, "--agent", "codex", "--state", "auto"])",
                              stringLiteral(relayBinaryPath)),
          .how =
              "1. Open ~/.codex/config.toml in your text editor, or create it.\n"
              "2. Put the line at the top, before any [section] header, in the place of a notify line that "
              "is there.\n"
              "3. Save the file. Codex reports the end of each turn; that it works shows in its process.",
          .undo = "Remove the notify line that calls kestrel-relay from ~/.codex/config.toml."};
}

}  // namespace

CodexAdapter::CodexAdapter(AdapterEnvironment environment)
    : AgentAdapter(AgentType::codex, std::move(environment)) {}

IntegrationStatus CodexAdapter::detect() const {
  const auto executable =
      inspector().findExecutable("codex", "/Applications/ChatGPT.app/Contents/Resources/codex");
  const auto configuration = inspector().home() / ".codex/config.toml";
  const bool isActive = inspector().textMentionsRelay(configuration) ||
                        inspector().hooksMentionRelay(inspector().home() / ".codex/hooks.json");
  auto result = status(executable, isActive, "Hook active", "Installed (Hook not configured)");
  if (!result.agentVersion && AgentInspector::exists(configuration)) result.agentVersion = "Config present";
  return result;
}

std::string CodexAdapter::setupInstructions() const {
  return "1. Open ~/.codex/config.toml in your text editor.\n"
         "2. At the top (root level, before any [section] headers), add:\n"
         "   notify = [\"kestrel-relay\", \"--agent\", \"codex\", \"--state\", \"working\"]\n"
         "3. Save the file. Kestrel will automatically receive lifecycle events.";
}

std::string CodexAdapter::manualSetupSnippet(std::string_view relayBinaryPath) const {
  return fmt::format(
      "# Add to the root level of ~/.codex/config.toml\n"
      R"(notify = ["{}", "--agent", "codex", "--state", "working"])",
      relayBinaryPath);
}

std::vector<AgentSetup> CodexAdapter::verifiedSetups(std::string_view relayBinaryPath) const {
  return {hooksSetup(relayBinaryPath), notifySetup(relayBinaryPath)};
}

}  // namespace kestrel
