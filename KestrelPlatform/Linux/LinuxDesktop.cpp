#include <cstdlib>
#include <unistd.h>

#include "KestrelPlatform/Linux/LinuxLoginItem.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

bool mayHaveDisplay() {
  return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

DesktopTraits desktopTraits() {
  return {};
}

void becomeAccessory() {}

std::optional<std::filesystem::path> companionProgram(const std::string& name) {
  const std::filesystem::path folder = ownProgram().parent_path();
  // Installed, what people do not call themselves is in libexec/kestrel beside bin.
  for (const char* elsewhere : {".", "../libexec/kestrel", "../../bin"}) {
    auto candidate = (folder / elsewhere / name).lexically_normal();
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return std::nullopt;
}

}  // namespace kestrel
