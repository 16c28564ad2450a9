#include "KestrelCore/Agents/Adapters/OpenCodeAdapter.h"

#include <utility>

#include "KestrelCore/Agents/Adapters/RelayCalls.h"

namespace kestrel {
namespace {

constexpr const char* kClassicBeforeRelay = R"(// Save as ~/.config/opencode/plugins/kestrel.js:
export const KestrelPlugin = {
  name: 'kestrel',
  onSessionStatus(session) {
    try {
      const state = (session && (session.status === 'busy' || session.status === 'running')) ? 'working' : 'idle';
      const sessionId = (session && session.id) ? session.id : 'opencode-default';
      const { spawn } = require('child_process');
      const proc = spawn(')";

constexpr const char* kClassicAfterRelay =
    R"(', ['--agent', 'opencode', '--state', state, '--session-id', sessionId], {
        detached: true,
        stdio: 'ignore'
      });
      proc.unref();
    } catch (e) {}
  }
};
export default KestrelPlugin;)";

constexpr const char* kPluginBeforeRelay = R"(// Reports to Kestrel when OpenCode works and when it rests.
import { spawn } from "node:child_process";

const relay = )";

constexpr const char* kPluginAfterRelay = R"(;

const call = (report) =>
  new Promise((done) => {
    const child = spawn(relay, ["--agent", "opencode", "--state", "auto", report], { stdio: "ignore" });
    child.once("error", done);
    child.once("exit", done);
  });

// One call after another, so that a late "busy" cannot overtake "idle".
let calls = Promise.resolve();

export const KestrelPlugin = async ({ directory }) => ({
  event: async ({ event }) => {
    if (event.type !== "session.status") return;
    const report = JSON.stringify({ type: event.type, directory, properties: event.properties });
    calls = calls.then(() => call(report)).catch(() => {});
  },
});)";

}  // namespace

OpenCodeAdapter::OpenCodeAdapter(AdapterEnvironment environment)
    : AgentAdapter(AgentType::opencode, std::move(environment)) {}

IntegrationStatus OpenCodeAdapter::detect() const {
  const auto executable = inspector().findExecutable("opencode", "/Users/vexel/.opencode/bin/opencode");
  const bool isActive = AgentInspector::exists(inspector().home() / ".config/opencode/plugins/kestrel.js");
  return status(executable, isActive, "Plugin active", "Installed (Plugin not configured)");
}

std::string OpenCodeAdapter::setupInstructions() const {
  return "1. Create the plugin directory if it does not exist:\n"
         "   mkdir -p ~/.config/opencode/plugins\n"
         "2. Save the plugin code snippet to ~/.config/opencode/plugins/kestrel.js\n"
         "3. Restart OpenCode to begin receiving lifecycle status events.";
}

std::string OpenCodeAdapter::manualSetupSnippet(std::string_view relayBinaryPath) const {
  return kClassicBeforeRelay + std::string(relayBinaryPath) + kClassicAfterRelay;
}

std::vector<AgentSetup> OpenCodeAdapter::verifiedSetups(std::string_view relayBinaryPath) const {
  return {{.versions = "OpenCode 1.18",
           .where = "~/.config/opencode/plugins/kestrel.js",
           .what = kPluginBeforeRelay + stringLiteral(relayBinaryPath) + kPluginAfterRelay,
           .how = "1. Create the plugin directory if it does not exist:\n"
                  "   mkdir -p ~/.config/opencode/plugins\n"
                  "2. Save the code as ~/.config/opencode/plugins/kestrel.js, in the place of an older one.\n"
                  "3. Restart OpenCode.",
           .undo = "Delete ~/.config/opencode/plugins/kestrel.js and restart OpenCode."}};
}

}  // namespace kestrel
