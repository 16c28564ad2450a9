#pragma once

#include <functional>

#include "KestrelControl/ControlOptions.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// `kestrelctl usage ...`: today's usage as the running Kestrel knows it, else, and for all that lies back,
/// from the store's files, of which nothing is changed. `askKestrel` gives its usage, or null. Returns the
/// exit status.
int runUsageCommand(const UsageOptions& options, const Directories& directories,
                    const std::function<Json()>& askKestrel);

}  // namespace kestrel
