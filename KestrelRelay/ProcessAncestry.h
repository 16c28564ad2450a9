#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kestrel {

// Both ask the system. Absent when there is no such process (any more) or it may not be looked at.

/// The short name that the system keeps of a process: its executable's, cut at 15 bytes.
std::optional<std::string> processName(std::int32_t pid);

/// 0 for the first process of the system, or of the container.
std::optional<std::int32_t> parentProcess(std::int32_t pid);

}  // namespace kestrel
