#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kestrel {

/// The executable of that name in the folder of this program, or in another one beside it (`elsewhere`,
/// relative to that folder). `ownPath` is how this program was called, with or without its folder.
std::optional<std::filesystem::path> siblingProgram(const std::string& ownPath, const std::string& name,
                                                    const std::filesystem::path& elsewhere = ".");

}  // namespace kestrel
