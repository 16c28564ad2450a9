#pragma once

#include "KestrelCore/Agents/Adapters/AgentAdapter.h"

namespace kestrel {

class AiderAdapter final : public AgentAdapter {
 public:
  explicit AiderAdapter(AdapterEnvironment environment);

  [[nodiscard]] IntegrationStatus detect() const override;
  [[nodiscard]] std::string setupInstructions() const override;
};

}  // namespace kestrel
