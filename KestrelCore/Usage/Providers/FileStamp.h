#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

/// What tells whether a file is still the same and unchanged.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0;
  /// Of the content, in nanoseconds since 1970.
  std::int64_t modified = 0;

  [[nodiscard]] bool isSameFile(const FileStamp& other) const {
    return device == other.device && inode == other.inode;
  }
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

FileStamp stampOf(const struct stat& status);
/// Of the regular file at a path; absent when there is none, also for a link.
std::optional<FileStamp> stampOf(const std::string& path);

/// Opens for reading without waiting and, where the system can and the owner may, without a trace in the time
/// of the last access. Flags as for open().
UniqueDescriptor openQuietly(const std::string& path, int flags = 0);

}  // namespace kestrel
