#include "KestrelCore/Agents/Adapters/AgentAdapter.h"

#include <utility>

namespace kestrel {

AgentAdapter::AgentAdapter(AgentType agentType, AdapterEnvironment environment)
    : agentType_(agentType),
      integrationType_(defaultIntegrationType(agentType)),
      inspector_(std::move(environment)) {}

std::string AgentAdapter::manualSetupSnippet(std::string_view) const {
  return {};
}

std::vector<AgentSetup> AgentAdapter::verifiedSetups(std::string_view) const {
  return {};
}

IntegrationStatus AgentAdapter::status(const std::optional<std::filesystem::path>& executable, bool isActive,
                                       std::string_view active, std::string_view inactive) const {
  IntegrationStatus status;
  status.isInstalled = executable.has_value();
  if (executable) status.agentVersion = inspector_.version(*executable);
  status.integrationType = integrationType_;
  status.isIntegrationActive = isActive;
  status.statusMessage = !executable ? "Not installed" : isActive ? active : inactive;
  return status;
}

}  // namespace kestrel
