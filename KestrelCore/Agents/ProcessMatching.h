#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "KestrelCore/Agents/ProcessMatch.h"
#include "KestrelCore/Platform/ProcessList.h"

namespace kestrel {

/// Recognises a command-line agent by its command line: the first family of a fixed order decides. Absent for
/// everything else, for support processes and maintenance commands of the agents, and for Kestrel's own. A
/// bare "claude" is recognised and not working: its command line does not tell.
std::optional<ProcessMatch> matchCommandLine(const ProcessRow& process);

/// A cheap test that holds for every command line that is recognised, and for few others.
bool mayBeAgent(std::string_view commandLine);

/// True for a command line that is exactly "claude".
bool isBareClaude(std::string_view commandLine);

}  // namespace kestrel
