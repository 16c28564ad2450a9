#include "KestrelCore/Presentation/AgentSetupModel.h"

#include <utility>

namespace kestrel {
namespace {

std::vector<std::string> lines(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const auto end = text.find('\n');
    if (end != 0) lines.emplace_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return lines;
}

}  // namespace

AgentSetupModel agentSetupModel(const AgentInspection& inspection, AgentType agent) {
  AgentSetupModel model;
  const std::string name(displayName(agent));
  model.title = "Set up " + name;
  const AgentAdapter* adapter = inspection.registry().adapter(agent);
  if (adapter == nullptr) {
    model.introduction = "Any program can report through kestrel-relay; its manual page says how.";
    return model;
  }
  if (adapter->integrationType() == IntegrationType::process) {
    model.introduction = adapter->setupInstructions();
    return model;
  }
  const auto& relay = inspection.relayPath();
  if (!relay) {
    model.introduction = "kestrel-relay was not found, neither beside Kestrel nor in the search path, and " +
                         name + " reports through it. Install it, then start Kestrel again.";
    return model;
  }
  model.introduction = "Kestrel changes no settings of " + name +
                       ". Paste this yourself; Kestrel then knows at once when it works and when it waits.";
  for (auto& setup : adapter->verifiedSetups(*relay)) {
    model.snippets.push_back({"For " + setup.versions, std::move(setup.where), std::move(setup.what),
                              lines(setup.how), std::move(setup.undo)});
  }
  model.snippets.push_back(
      {"Classic", "", adapter->manualSetupSnippet(*relay), lines(adapter->setupInstructions()), ""});
  return model;
}

}  // namespace kestrel
