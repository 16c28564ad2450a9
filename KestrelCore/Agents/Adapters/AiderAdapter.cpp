#include "KestrelCore/Agents/Adapters/AiderAdapter.h"

#include <utility>

namespace kestrel {

AiderAdapter::AiderAdapter(AdapterEnvironment environment)
    : AgentAdapter(AgentType::aider, std::move(environment)) {}

IntegrationStatus AiderAdapter::detect() const {
  constexpr const char* kInstalled = "Installed (CLI executable detected)";
  return status(inspector().findExecutable("aider"), inspector().isRunning(agentType()), kInstalled,
                kInstalled);
}

std::string AiderAdapter::setupInstructions() const {
  return "Aider is monitored automatically when active in your terminal shell.";
}

}  // namespace kestrel
