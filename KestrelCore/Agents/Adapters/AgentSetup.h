#pragma once

#include <string>

namespace kestrel {

/// A way to let an agent report to Kestrel that was seen to work: texts for the person who does it. Kestrel
/// itself writes into no agent's files.
struct AgentSetup {
  /// Whom it is for: "Claude Code 2.1".
  std::string versions;
  /// The file, from the home directory: "~/.claude/settings.json".
  std::string where;
  /// What goes into the file.
  std::string what;
  /// Steps, one per line.
  std::string how;
  std::string undo;
};

}  // namespace kestrel
