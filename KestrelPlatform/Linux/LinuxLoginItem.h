#pragma once

#include <filesystem>
#include <memory>

#include "KestrelCore/Platform/LoginItem.h"
#include "KestrelCore/Support/AtomicFile.h"

namespace kestrel {

/// A file of the desktop application autostart standard. An entry that is hidden, or switched off by a
/// desktop's own settings, counts as not registered; one whose program is gone is not found. `program` is
/// what it starts.
std::unique_ptr<LoginItem> makeLinuxLoginItem(std::filesystem::path entryFile, std::filesystem::path program,
                                              std::shared_ptr<const AtomicFileWriter> files);

/// The user's entry for Kestrel.
std::filesystem::path autostartEntry(const std::filesystem::path& preferences);

/// This process's own program; empty when the system does not tell. After an upgrade, the new one of the same
/// place.
std::filesystem::path ownProgram();

}  // namespace kestrel
