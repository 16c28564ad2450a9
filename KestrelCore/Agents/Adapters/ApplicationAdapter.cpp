#include "KestrelCore/Agents/Adapters/ApplicationAdapter.h"

#include <algorithm>
#include <utility>

namespace kestrel {

ApplicationAdapter::ApplicationAdapter(AgentType agentType, AdapterEnvironment environment,
                                       std::vector<std::string_view> bundles, std::string_view folder,
                                       std::string_view instructions)
    : AgentAdapter(agentType, std::move(environment)),
      bundles_(std::move(bundles)),
      folder_(folder),
      instructions_(instructions) {}

IntegrationStatus ApplicationAdapter::detect() const {
  const bool hasBundle = std::ranges::any_of(
      bundles_, [this](auto bundle) { return AgentInspector::exists(inspector().rooted(bundle)); });
  IntegrationStatus status;
  status.integrationType = integrationType();
  status.isIntegrationActive = inspector().isRunning(agentType());
  status.statusMessage = status.isIntegrationActive                             ? "Running (Process signal)"
                         : hasBundle                                            ? "Installed"
                         : AgentInspector::exists(inspector().home() / folder_) ? "Detected"
                                                                                : "Not installed";
  status.isInstalled = status.statusMessage != "Not installed";
  return status;
}

}  // namespace kestrel
