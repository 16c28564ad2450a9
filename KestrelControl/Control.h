#pragma once

#include "KestrelControl/ControlOptions.h"

namespace kestrel {

/// Asks the running Kestrel and prints what it says. Returns the exit status.
int runControl(const ControlOptions& options);

}  // namespace kestrel
