#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestrel {

// The kernel's small text files. A file that is missing, unreadable or not what is expected is absent, never
// an error: devices come and go while they are read. Short blocking reads; any thread.

/// The first 4 KiB without white space at the end.
std::optional<std::string> readSmallFile(const std::filesystem::path& path);
/// A decimal number that is all of the content.
std::optional<std::int64_t> readIntegerFile(const std::filesystem::path& path);
/// What stands in a folder, sorted by name; empty when it cannot be listed.
std::vector<std::filesystem::path> pathsIn(const std::filesystem::path& folder);

}  // namespace kestrel
