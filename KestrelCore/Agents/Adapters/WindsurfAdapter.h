#pragma once

#include <utility>

#include "KestrelCore/Agents/Adapters/ApplicationAdapter.h"

namespace kestrel {

class WindsurfAdapter final : public ApplicationAdapter {
 public:
  explicit WindsurfAdapter(AdapterEnvironment environment)
      : ApplicationAdapter(AgentType::windsurf, std::move(environment), {"/Applications/Windsurf.app"},
                           ".windsurf",
                           "Windsurf is monitored automatically via background process heuristics. No manual "
                           "configuration required.") {}
};

}  // namespace kestrel
