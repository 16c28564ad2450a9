#pragma once

#include <array>
#include <string_view>

#include "KestrelCore/Agents/IntegrationType.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {

/// The agent families, in the order of every list of agents.
enum class AgentType { claude, codex, gemini, opencode, antigravity, cursor, windsurf, aider, custom };

template <>
struct RawValues<AgentType> {
  static constexpr std::array<std::string_view, 9> table{
      "claude", "codex", "gemini", "opencode", "antigravity", "cursor", "windsurf", "aider", "custom"};
};

/// The name people know: "Claude Code".
std::string_view displayName(AgentType type);
/// The name of the system symbol that stands for the family.
std::string_view iconName(AgentType type);
/// The channel through which the family's sessions are usually learnt of.
IntegrationType defaultIntegrationType(AgentType type);

}  // namespace kestrel
