#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Agents/Adapters/AgentAdapter.h"

namespace kestrel {

/// An agent that is an application with a window: nothing is configured, its process is watched.
class ApplicationAdapter : public AgentAdapter {
 public:
  /// "Running (Process signal)", "Installed" when its application is there, "Detected" when only its folder
  /// in the home directory is, or "Not installed". Active while it runs.
  [[nodiscard]] IntegrationStatus detect() const final;
  [[nodiscard]] std::string setupInstructions() const final { return instructions_; }

 protected:
  /// `bundles` are absolute, `folder` is relative to the home directory.
  ApplicationAdapter(AgentType agentType, AdapterEnvironment environment,
                     std::vector<std::string_view> bundles, std::string_view folder,
                     std::string_view instructions);

 private:
  const std::vector<std::string_view> bundles_;
  const std::string_view folder_;
  const std::string instructions_;
};

}  // namespace kestrel
