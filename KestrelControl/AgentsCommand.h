#pragma once

#include <functional>
#include <string>

#include "KestrelControl/ControlOptions.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// `kestrelctl agents`: which agents are on this machine, and which report to Kestrel. `askKestrel` gives the
/// sessions of the running Kestrel, or null: they tell which applications run. Takes some seconds when an
/// agent does not answer. Returns the exit status.
int runAgentsCommand(const AgentsOptions& options, const Directories& directories,
                     const std::function<Json()>& askKestrel);

/// `kestrelctl setup AGENT`: how a person lets the agent report, with the path of the relay that stands
/// beside this program. Changes nothing. Returns the exit status.
int runSetupCommand(const SetupOptions& options, const Directories& directories, const std::string& ownPath);

}  // namespace kestrel
