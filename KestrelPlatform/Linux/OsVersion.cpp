#include "KestrelPlatform/Linux/OsVersion.h"

#include <sstream>
#include <sys/utsname.h>

#include "KestrelCore/Support/AtomicFile.h"

namespace kestrel {
namespace {

constexpr std::size_t kMaximumBytes = 64 * 1024;

std::string distribution() {
  std::istringstream lines(readWholeFile("/etc/os-release", kMaximumBytes).value_or(""));
  const std::string key = "PRETTY_NAME=";
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with(key)) continue;
    const std::string value = line.substr(key.size());
    const bool isQuoted = value.size() > 1 && (value.front() == '"' || value.front() == '\'');
    return isQuoted ? value.substr(1, value.size() - 2) : value;
  }
  return "unknown distribution";
}

}  // namespace

std::string linuxOsVersion() {
  utsname kernel{};
  if (::uname(&kernel) != 0) return distribution();
  return distribution() + ", " + kernel.sysname + " " + kernel.release;
}

}  // namespace kestrel
