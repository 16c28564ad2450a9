#pragma once

#include <utility>

#include "KestrelCore/Agents/Adapters/ApplicationAdapter.h"

namespace kestrel {

class AntigravityAdapter final : public ApplicationAdapter {
 public:
  explicit AntigravityAdapter(AdapterEnvironment environment)
      : ApplicationAdapter(AgentType::antigravity, std::move(environment),
                           {"/Applications/Antigravity.app", "/Applications/Antigravity IDE.app"},
                           ".gemini/antigravity",
                           "Antigravity is monitored automatically via background process heuristics and "
                           "system workspace events. No manual configuration required.") {}
};

}  // namespace kestrel
