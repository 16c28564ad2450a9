#include "KestrelCore/Agents/AgentType.h"

#include <cstddef>

namespace kestrel {
namespace {

struct Properties {
  std::string_view displayName;
  std::string_view iconName;
  IntegrationType integration;
};

constexpr std::array<Properties, 9> kProperties{{
    {"Claude Code", "sparkles", IntegrationType::lifecycleHook},
    {"Codex CLI", "terminal", IntegrationType::lifecycleHook},
    {"Gemini CLI", "bolt.fill", IntegrationType::lifecycleHook},
    {"OpenCode", "chevron.left.forwardslash.chevron.right", IntegrationType::plugin},
    {"Antigravity", "circle.hexagongrid.fill", IntegrationType::process},
    {"Cursor", "cursorarrow.rays", IntegrationType::process},
    {"Windsurf", "wind", IntegrationType::process},
    {"Aider", "wrench.and.screwdriver", IntegrationType::process},
    {"Custom Agent", "cpu", IntegrationType::process},
}};

const Properties& propertiesOf(AgentType type) {
  return kProperties[static_cast<std::size_t>(type)];
}

}  // namespace

std::string_view displayName(AgentType type) {
  return propertiesOf(type).displayName;
}
std::string_view iconName(AgentType type) {
  return propertiesOf(type).iconName;
}
IntegrationType defaultIntegrationType(AgentType type) {
  return propertiesOf(type).integration;
}

}  // namespace kestrel
