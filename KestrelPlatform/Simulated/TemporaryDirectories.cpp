#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>
#include <unistd.h>

namespace kestrel {
namespace fs = std::filesystem;
namespace {

// The name is short because socket paths are limited to about a hundred bytes.
fs::path makeFreshFolder() {
  std::string name = fs::canonical(fs::temp_directory_path()) / "kestrel-XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) {
    throw fs::filesystem_error("no temporary folder", name, std::error_code(errno, std::generic_category()));
  }
  return name;
}

}  // namespace

TemporaryDirectories::TemporaryDirectories() : root_(makeFreshFolder()) {
  directories_.home = root_ / "home";
  directories_.applicationSupport = directories_.home / ".local/share";
  directories_.logs = directories_.home / ".local/state";
  directories_.preferences = directories_.home / ".config";
  directories_.temporary = root_ / "tmp";
  directories_.runtimePrefixes = {root_ / "var/run/kestrel", root_ / "run/kestrel"};
  directories_.systemHelperSocket = root_ / "run/kestrel-helper.sock";
  fs::create_directory(directories_.home);
  fs::create_directory(directories_.temporary);
}

TemporaryDirectories::~TemporaryDirectories() {
  std::error_code ignored;
  fs::remove_all(root_, ignored);
}

}  // namespace kestrel
