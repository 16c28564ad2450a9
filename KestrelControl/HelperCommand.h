#pragma once

#include <string>

#include "KestrelControl/ControlOptions.h"
#include "KestrelCore/Platform/Directories.h"

namespace kestrel {

/// `kestrelctl helper ...`: asks the privileged helper itself, so it needs no running Kestrel, and installs
/// or removes it by the system's own commands, which it shows. Returns the exit status.
int runHelperCommand(const HelperOptions& options, const Directories& directories,
                     const std::string& ownPath);

}  // namespace kestrel
