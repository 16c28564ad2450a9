#pragma once

#include <string>

#include "KestrelControl/ControlOptions.h"

namespace kestrel {

/// Asks the running Kestrel, or its helper, and prints what it says; `ownPath` is how this program was
/// called. Returns the exit status.
int runControl(const ControlOptions& options, const std::string& ownPath);

}  // namespace kestrel
