#include "KestrelCore/Agents/IntegrationType.h"

#include <cstddef>

namespace kestrel {

std::string_view displayName(IntegrationType type) {
  constexpr std::array<std::string_view, 4> kNames{"Lifecycle Hook", "Plugin", "Process Watcher", "Fallback"};
  return kNames[static_cast<std::size_t>(type)];
}

}  // namespace kestrel
