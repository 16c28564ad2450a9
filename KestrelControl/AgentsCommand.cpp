#include "KestrelControl/AgentsCommand.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <system_error>
#include <unistd.h>

#include "KestrelControl/AgentsText.h"
#include "KestrelControl/Output.h"
#include "KestrelControl/SiblingProgram.h"
#include "KestrelCore/Agents/Adapters/AgentRegistry.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/StreamLogSink.h"
#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

std::string jsonText(const Json& report) {
  return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

AdapterEnvironment environmentOf(const Directories& directories) {
  const char* searchPath = std::getenv("PATH");
  AdapterEnvironment environment;
  environment.home = directories.home;
  environment.searchPath = searchPath == nullptr ? "" : searchPath;
  environment.logSink =
      makeStreamLogSink(STDERR_FILENO, LogLineStyle::terminal, std::make_shared<SystemClock>());
  return environment;
}

/// The agents that have a session; none without an answer.
std::set<AgentType> agentsOf(const Json& answer) {
  std::set<AgentType> agents;
  if (!answer.is_object()) return agents;
  for (const auto& session : answer.value("sessions", Json::array())) {
    const auto raw = session.is_object() ? optionalString(session, "agentType") : std::nullopt;
    if (const auto agent = fromRawValue<AgentType>(raw.value_or(""))) agents.insert(*agent);
  }
  return agents;
}

/// The relay as the agents will call it: beside this program, however it was called.
std::optional<std::string> relayFor(const AgentInspector& inspector, const std::string& ownPath) {
  auto relay = siblingProgram(ownPath, "kestrel-relay");
  if (!relay) relay = inspector.findExecutable("kestrel-relay");
  return relay ? std::optional(relay->native()) : std::nullopt;
}

Json verifiedReport(const AgentAdapter& adapter, const std::string& relay) {
  Json setups = Json::array();
  for (const auto& setup : adapter.verifiedSetups(relay)) {
    setups.push_back({{"versions", setup.versions},
                      {"where", setup.where},
                      {"what", setup.what},
                      {"how", setup.how},
                      {"undo", setup.undo}});
  }
  return {{"setups", std::move(setups)}};
}

Json classicReport(const AgentAdapter& adapter, const std::string& relay) {
  return {{"instructions", adapter.setupInstructions()}, {"snippet", adapter.manualSetupSnippet(relay)}};
}

}  // namespace

int runAgentsCommand(const AgentsOptions& options, const Directories& directories,
                     const std::function<Json()>& askKestrel) {
  auto environment = environmentOf(directories);
  environment.isRunning = [agents = agentsOf(askKestrel())](AgentType agent) {
    return agents.contains(agent);
  };
  AgentRegistry registry(std::move(environment));
  registry.registerDefaultAdapters();
  Json agents = Json::array();
  for (const auto& [agentType, status] : registry.detectAll()) {
    Json& agent = agents.emplace_back(encode(status));
    agent["agentType"] = rawValue(agentType);
    agent["displayName"] = displayName(agentType);
  }
  const Json report = {{"agents", std::move(agents)}};
  return print(options.json ? jsonText(report) : agentsText(report));
}

int runSetupCommand(const SetupOptions& options, const Directories& directories, const std::string& ownPath) {
  const auto environment = environmentOf(directories);
  AgentRegistry registry(environment);
  registry.registerDefaultAdapters();
  const auto agentType = fromRawValue<AgentType>(options.agent);
  const AgentAdapter* adapter = agentType ? registry.adapter(*agentType) : nullptr;
  if (adapter == nullptr) return complain("there is no set-up for '" + options.agent + "'");
  std::string relay;
  const bool needsRelay = adapter->integrationType() != IntegrationType::process;
  if (needsRelay) {
    const auto found = relayFor(AgentInspector(environment), ownPath);
    if (!found) return complain("there is no kestrel-relay beside kestrelctl, nor in PATH");
    if (!isUtf8(*found)) return complain("the path of kestrel-relay cannot be written into a configuration");
    relay = *found;
  }
  Json report =
      needsRelay && !options.classic ? verifiedReport(*adapter, relay) : classicReport(*adapter, relay);
  report["agentType"] = options.agent;
  report["displayName"] = displayName(adapter->agentType());
  if (needsRelay) report["relayPath"] = relay;
  return print(options.json ? jsonText(report) : setupText(report));
}

}  // namespace kestrel
