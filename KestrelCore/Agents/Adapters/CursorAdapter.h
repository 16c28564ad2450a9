#pragma once

#include <utility>

#include "KestrelCore/Agents/Adapters/ApplicationAdapter.h"

namespace kestrel {

class CursorAdapter final : public ApplicationAdapter {
 public:
  explicit CursorAdapter(AdapterEnvironment environment)
      : ApplicationAdapter(AgentType::cursor, std::move(environment), {"/Applications/Cursor.app"}, ".cursor",
                           "Cursor is monitored automatically via background process heuristics. No manual "
                           "configuration required.") {}
};

}  // namespace kestrel
