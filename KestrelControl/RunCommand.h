#pragma once

#include "KestrelControl/ControlOptions.h"
#include "KestrelCore/Platform/Directories.h"

namespace kestrel {

/// `kestrelctl run -- COMMAND`: the machine stays awake while the command runs, by a session of its own that
/// ends with it. Without a Kestrel it warns and runs all the same. Returns the command's exit status; when a
/// signal ended the command, the same signal ends this process.
int runRunCommand(const RunOptions& options, const Directories& directories);

}  // namespace kestrel
