#pragma once

#include <filesystem>

#include "KestrelCore/Platform/Directories.h"

namespace kestrel {

/// A home of its own in a fresh folder, removed with everything in it at the end. Of the directories only
/// `home` and `temporary` exist at first. Throws std::filesystem::filesystem_error when the folder cannot be
/// made.
class TemporaryDirectories {
 public:
  TemporaryDirectories();
  ~TemporaryDirectories();
  TemporaryDirectories(const TemporaryDirectories&) = delete;
  TemporaryDirectories& operator=(const TemporaryDirectories&) = delete;

  [[nodiscard]] const Directories& directories() const { return directories_; }
  /// The fresh folder; beside `home` and `temporary` it is outside of every directory.
  [[nodiscard]] const std::filesystem::path& root() const { return root_; }

 private:
  std::filesystem::path root_;
  Directories directories_;
};

}  // namespace kestrel
