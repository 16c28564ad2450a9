#include "KestrelCore/Usage/Providers/FileStamp.h"

#include <cerrno>
#include <fcntl.h>

namespace kestrel {
namespace {

/// Systems name the time's member differently.
template <typename Status>
std::int64_t modificationTime(const Status& status) {
  const auto nanoseconds = [](const timespec& time) {
    return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
  };
  if constexpr (requires { status.st_mtimespec; }) {
    return nanoseconds(status.st_mtimespec);
  } else {
    return nanoseconds(status.st_mtim);
  }
}

}  // namespace

FileStamp stampOf(const struct stat& status) {
  return {.device = static_cast<std::uint64_t>(status.st_dev),
          .inode = static_cast<std::uint64_t>(status.st_ino),
          .size = static_cast<std::uint64_t>(status.st_size),
          .modified = modificationTime(status)};
}

std::optional<FileStamp> stampOf(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return stampOf(status);
}

UniqueDescriptor openQuietly(const std::string& path, int flags) {
  flags |= O_RDONLY | O_CLOEXEC | O_NONBLOCK;
#ifdef O_NOATIME
  UniqueDescriptor quiet(::open(path.c_str(), flags | O_NOATIME));
  if (quiet || errno != EPERM) return quiet;
#endif
  return UniqueDescriptor(::open(path.c_str(), flags));
}

}  // namespace kestrel
