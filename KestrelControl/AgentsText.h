#pragma once

#include <string>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

// What the agents' adapters say, as text for people: lines, each ended.

/// The report of `agents`: a line for each, and how to set up what does not report yet.
std::string agentsText(const Json& report);

/// The report of `setup`: the steps, and what to put where.
std::string setupText(const Json& report);

}  // namespace kestrel
