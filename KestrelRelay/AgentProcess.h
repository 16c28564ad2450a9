#pragma once

#include <cstdint>
#include <optional>

#include "KestrelRelay/ProcessAncestry.h"

namespace kestrel {

/// The two questions about a process, so that the walk can be tried on any family tree.
struct ProcessQuestions {
  std::optional<std::string> (*name)(std::int32_t) = processName;
  std::optional<std::int32_t> (*parent)(std::int32_t) = parentProcess;
};

/// The nearest process from `start` upwards that is no shell: agents run their hooks through short-lived
/// ones. Absent when that is the first process of the system, or when the way there cannot be read.
std::optional<std::int32_t> nearestNonShell(std::int32_t start, const ProcessQuestions& questions = {});

}  // namespace kestrel
