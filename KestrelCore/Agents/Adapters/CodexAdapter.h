#pragma once

#include "KestrelCore/Agents/Adapters/AgentAdapter.h"

namespace kestrel {

class CodexAdapter final : public AgentAdapter {
 public:
  explicit CodexAdapter(AdapterEnvironment environment);

  [[nodiscard]] IntegrationStatus detect() const override;
  [[nodiscard]] std::string setupInstructions() const override;
  [[nodiscard]] std::string manualSetupSnippet(std::string_view relayBinaryPath) const override;
  [[nodiscard]] std::vector<AgentSetup> verifiedSetups(std::string_view relayBinaryPath) const override;
};

}  // namespace kestrel
