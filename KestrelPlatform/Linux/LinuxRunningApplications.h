#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "KestrelCore/Platform/RunningApplications.h"
#include "KestrelCore/Support/Clock.h"

namespace kestrel {

/// The agents' editors among the processes: Cursor, Windsurf, Antigravity. No system service lists running
/// applications here. Names and identifiers come from the installed desktop entries, which are read while an
/// editor runs, at most once a minute.
std::unique_ptr<RunningApplications> makeLinuxRunningApplications(
    std::vector<std::filesystem::path> applicationsFolders, std::shared_ptr<const Clock> clock);

}  // namespace kestrel
