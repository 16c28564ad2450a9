#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Agents/Adapters/AgentInspector.h"
#include "KestrelCore/Agents/Adapters/AgentSetup.h"
#include "KestrelCore/Agents/Adapters/IntegrationStatus.h"
#include "KestrelCore/Agents/AgentType.h"

namespace kestrel {

/// What Kestrel knows of one agent family: whether it is here, whether it reports to Kestrel, and how a
/// person makes it do so. Reads only. Immutable, so safe from any thread.
class AgentAdapter {
 public:
  virtual ~AgentAdapter() = default;
  AgentAdapter(const AgentAdapter&) = delete;
  AgentAdapter& operator=(const AgentAdapter&) = delete;

  [[nodiscard]] AgentType agentType() const { return agentType_; }
  [[nodiscard]] IntegrationType integrationType() const { return integrationType_; }

  /// Never fails: what cannot be found out counts as not there. May start the agent to ask for its version
  /// and block for up to 3 s, so never on the main thread.
  [[nodiscard]] virtual IntegrationStatus detect() const = 0;

  /// How the agent is set up with the snippet, or that nothing needs to be done.
  [[nodiscard]] virtual std::string setupInstructions() const = 0;
  /// The text to paste, with the relay's path put in as it is. Empty where nothing needs to be done.
  [[nodiscard]] virtual std::string manualSetupSnippet(std::string_view relayBinaryPath) const;

  /// Set-ups for current versions of the agent, the best first, with the relay's path quoted as each place
  /// needs it. The path is valid UTF-8. Empty where nothing needs to be done.
  [[nodiscard]] virtual std::vector<AgentSetup> verifiedSetups(std::string_view relayBinaryPath) const;

 protected:
  AgentAdapter(AgentType agentType, AdapterEnvironment environment);

  [[nodiscard]] const AgentInspector& inspector() const { return inspector_; }
  /// The status of an agent with an executable, with the version that it tells.
  [[nodiscard]] IntegrationStatus status(const std::optional<std::filesystem::path>& executable,
                                         bool isActive, std::string_view active,
                                         std::string_view inactive) const;

 private:
  const AgentType agentType_;
  const IntegrationType integrationType_;
  const AgentInspector inspector_;
};

}  // namespace kestrel
