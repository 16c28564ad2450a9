#include "KestrelPlatform/Linux/LidFiles.h"

#include <string>

#include "KestrelPlatform/Linux/SysfsReader.h"

namespace kestrel {
namespace {

/// Words of a bit mask in hexadecimal, the lowest last; the lid is bit 0.
bool hasLidBit(const std::string& switches) {
  const char last = switches.empty() ? '0' : switches.back();
  return std::string("13579bdf").find(last) != std::string::npos;
}

}  // namespace

std::optional<bool> readLidButton(const std::filesystem::path& root) {
  for (const auto& button : pathsIn(root)) {
    // "state:      open"
    const auto text = readSmallFile(button / "state");
    if (!text || !text->starts_with("state:")) continue;
    if (text->ends_with(" closed")) return true;
    if (text->ends_with(" open")) return false;
  }
  return std::nullopt;
}

bool hasLidSwitch(const std::filesystem::path& inputRoot) {
  for (const auto& device : pathsIn(inputRoot)) {
    if (hasLidBit(readSmallFile(device / "capabilities/sw").value_or(""))) return true;
  }
  return false;
}

}  // namespace kestrel
