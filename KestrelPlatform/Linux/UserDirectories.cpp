#include <cstdlib>
#include <string>
#include <utility>

#include "KestrelCore/Platform/Directories.h"

// The statically linked relay shares this file: no library, and no getpwuid, which cannot be linked
// statically.

namespace kestrel {
namespace fs = std::filesystem;
namespace {

constexpr const char* kDefaultData = ".local/share";

/// A folder from the environment. A relative one would mean another folder in each program, so it counts as
/// unset.
std::optional<fs::path> folderFromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value != '/') return std::nullopt;
  std::string text(value);
  while (text.size() > 1 && text.back() == '/') text.pop_back();
  return text;
}

}  // namespace

std::optional<Directories> userDirectories() {
  auto home = folderFromEnvironment("HOME");
  if (!home) return std::nullopt;
  Directories directories;
  directories.home = *std::move(home);
  directories.applicationSupport =
      folderFromEnvironment("XDG_DATA_HOME").value_or(directories.home / kDefaultData);
  directories.logs = folderFromEnvironment("XDG_STATE_HOME").value_or(directories.home / ".local/state");
  directories.preferences = folderFromEnvironment("XDG_CONFIG_HOME").value_or(directories.home / ".config");
  directories.temporary = folderFromEnvironment("TMPDIR").value_or("/tmp");
  // The first is a link to the second on current systems.
  directories.runtimePrefixes = {"/var/run/kestrel", "/run/kestrel"};
  return directories;
}

std::vector<fs::path> alternativeApplicationSupport(const Directories& directories) {
  fs::path standard = directories.home / kDefaultData;
  if (directories.applicationSupport == standard) return {};
  return {std::move(standard)};
}

}  // namespace kestrel
