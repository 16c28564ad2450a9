#include "KestrelControl/SiblingProgram.h"

#include <cstdlib>
#include <sstream>
#include <system_error>
#include <unistd.h>

namespace kestrel {
namespace {

namespace fs = std::filesystem;

bool isExecutable(const fs::path& path) {
  return ::access(path.c_str(), X_OK) == 0;
}

/// The executable of a command as a shell finds it.
fs::path executableOf(const std::string& command) {
  if (command.find('/') != std::string::npos) return command;
  const char* variable = std::getenv("PATH");
  std::istringstream folders(variable == nullptr ? "" : variable);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (isExecutable(fs::path(folder) / command)) return fs::path(folder) / command;
  }
  return command;
}

}  // namespace

std::optional<fs::path> siblingProgram(const std::string& ownPath, const std::string& name,
                                       const fs::path& elsewhere) {
  std::error_code error;
  const fs::path folder = fs::canonical(executableOf(ownPath), error).parent_path();
  if (error) return std::nullopt;
  for (const auto& candidate : {folder / name, folder / elsewhere / name}) {
    if (isExecutable(candidate)) return candidate.lexically_normal();
  }
  return std::nullopt;
}

}  // namespace kestrel
