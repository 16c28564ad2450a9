#include "KestrelCore/Agents/Adapters/GeminiAdapter.h"

#include <fmt/format.h>
#include <utility>

#include "KestrelCore/Agents/Adapters/RelayCalls.h"

namespace kestrel {
namespace {

constexpr int kTimeoutMilliseconds = 5000;

/// Gemini CLI takes a hook that fails for a refusal, and shows what it prints.
constexpr const char* kGuard = " >/dev/null 2>&1 || true";

struct ClassicHook {
  const char* event;
  const char* state;
};

constexpr ClassicHook kClassicHooks[] = {{"BeforeAgent", "working"},  {"AfterAgent", "idle"},
                                         {"BeforeTool", "working"},   {"AfterTool", "working"},
                                         {"SessionStart", "working"}, {"SessionEnd", "completed"}};

}  // namespace

GeminiAdapter::GeminiAdapter(AdapterEnvironment environment)
    : AgentAdapter(AgentType::gemini, std::move(environment)) {}

IntegrationStatus GeminiAdapter::detect() const {
  const auto executable = inspector().findExecutable("gemini", "/opt/homebrew/bin/gemini");
  const bool isActive = inspector().hooksMentionRelay(inspector().home() / ".gemini/settings.json");
  return status(executable, isActive, "Hook active", "Installed (Hooks not configured)");
}

std::string GeminiAdapter::setupInstructions() const {
  return "1. Open ~/.gemini/settings.json in your text editor.\n"
         "2. Add the \"hooks\" configuration snippet.\n"
         "3. Save the file. Kestrel will automatically track Gemini CLI events.";
}

std::string GeminiAdapter::manualSetupSnippet(std::string_view relayBinaryPath) const {
  std::string lines;
  for (const auto& [event, state] : kClassicHooks) {
    lines += lines.empty() ? "" : ",\n";
    lines += fmt::format(
        R"(  "{}": [{{ "hooks": [{{ "type": "command", "command": "{} --agent gemini --state {}", )"
        R"("timeout": 10000 }}] }}])",
        event, relayBinaryPath, state);
  }
  return "// Add to the \"hooks\" object in ~/.gemini/settings.json:\n\"hooks\": {\n" + lines + "\n}";
}

std::vector<AgentSetup> GeminiAdapter::verifiedSetups(std::string_view relayBinaryPath) const {
  return {{.versions = "Gemini CLI 0.61",
           .where = "~/.gemini/settings.json",
           .what = hooksDocument({"SessionStart", "BeforeAgent", "BeforeTool", "AfterTool", "Notification",
                                  "AfterAgent", "SessionEnd"},
                                 relayCommand(relayBinaryPath, "gemini") + kGuard, kTimeoutMilliseconds),
           .how =
               "1. Open ~/.gemini/settings.json in your text editor, or create it.\n"
               "2. Merge the \"hooks\" object into it; where an event is listed already, add to its list.\n"
               "3. Save the file. Sessions of Gemini CLI that start from now on report to Kestrel.",
           .undo = "Remove the entries that call kestrel-relay from ~/.gemini/settings.json."}};
}

}  // namespace kestrel
