#pragma once

#include <filesystem>

namespace kestrel {

/// Creates a folder and the missing ones above it, each with mode 0700; existing ones stay as they are.
/// The caller has asked the write policy. Returns 0 or errno.
[[nodiscard]] int createPrivateFolders(const std::filesystem::path& folder);

}  // namespace kestrel
