#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KestrelCore/Support/Logger.h"

namespace kestrel {

class KestrelWritePolicy;

/// The only way to create, write, rename or remove a file: it asks the write policy before each operation.
/// A write is complete or has not happened: a reader sees the old content or the new, also after a crash or
/// on a full disk. Files get mode 0600, new folders 0700. Failures are logged once, with the reason, and told
/// by the result. Safe from any thread.
class AtomicFileWriter {
 public:
  AtomicFileWriter(std::shared_ptr<const KestrelWritePolicy> policy, Logger logger);

  /// Replaces the file's content; a symbolic link is followed, and its target replaced.
  [[nodiscard]] bool write(const std::filesystem::path& path, std::string_view content) const;
  /// Creates an empty file unless there is one.
  [[nodiscard]] bool createIfMissing(const std::filesystem::path& path) const;
  /// Renames within a folder, replacing what stands at the new name.
  [[nodiscard]] bool moveAside(const std::filesystem::path& path, const std::filesystem::path& newPath) const;

 private:
  std::shared_ptr<const KestrelWritePolicy> policy_;
  Logger logger_;
};

/// The whole content of a regular file of at most `maximumBytes`; absent when it cannot be read or is larger.
std::optional<std::string> readWholeFile(const std::filesystem::path& path, std::size_t maximumBytes);

}  // namespace kestrel
