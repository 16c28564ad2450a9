#pragma once

#include <string>

#include "KestrelControl/ControlOptions.h"

namespace kestrel {

/// Writes to standard error, with the program's name before it. Returns the exit status of a failure.
int complain(const std::string& problem);

/// Writes to standard output, all of it. Returns the exit status.
int print(const std::string& text);

}  // namespace kestrel
