#include <Foundation/Foundation.h>

#include "KestrelCore/Platform/Directories.h"

namespace kestrel {

namespace {

std::filesystem::path withoutTrailingSlash(const std::filesystem::path& path) {
  return path.has_filename() ? path : path.parent_path();
}

std::filesystem::path folder(NSString* path) {
  if (path.length == 0) return {};
  return withoutTrailingSlash(path.fileSystemRepresentation);
}

std::filesystem::path userFolder(NSSearchPathDirectory directory, const std::filesystem::path& fallback) {
  NSArray<NSURL*>* urls = [[NSFileManager defaultManager] URLsForDirectory:directory
                                                                 inDomains:NSUserDomainMask];
  NSURL* first = urls.firstObject;
  const auto path = folder(first.path);
  return path.empty() ? fallback : path;
}

}  // namespace

std::optional<Directories> userDirectories() {
  @autoreleasepool {
    const auto home = folder(NSHomeDirectory());
    if (!home.is_absolute()) return std::nullopt;
    const auto library = userFolder(NSLibraryDirectory, home / "Library");
    Directories directories;
    directories.home = home;
    directories.applicationSupport =
        userFolder(NSApplicationSupportDirectory, home / "Library" / "Application Support");
    directories.logs = library / "Logs";
    directories.preferences = library / "Preferences";
    directories.temporary = folder(NSTemporaryDirectory());
    directories.runtimePrefixes = {"/var/run/kestrel"};
    return directories;
  }
}

// Nothing in the environment moves the folders here.
std::vector<std::filesystem::path> alternativeApplicationSupport(const Directories&) {
  return {};
}

}  // namespace kestrel
