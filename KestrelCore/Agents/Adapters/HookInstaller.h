#pragma once

#include <filesystem>
#include <vector>

#include "KestrelCore/Platform/Directories.h"

namespace kestrel {

/// Knows the folder for backups of agents' configuration files. It installs nothing: people change their
/// agents' files themselves, and keep a copy here when they want one. Safe from any thread.
class HookInstaller {
 public:
  explicit HookInstaller(const Directories& directories);

  /// Need not exist.
  [[nodiscard]] const std::filesystem::path& backupDirectory() const { return backupDirectory_; }

  /// The backups of one configuration file, the newest first: plain files named like it, alone or followed
  /// by "." or "-" and anything. Files of the same name in different folders share their backups.
  [[nodiscard]] std::vector<std::filesystem::path> listBackups(
      const std::filesystem::path& configuration) const;

 private:
  const std::filesystem::path backupDirectory_;
};

}  // namespace kestrel
