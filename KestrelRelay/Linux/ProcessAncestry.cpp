#include "KestrelRelay/ProcessAncestry.h"

#include <algorithm>
#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

namespace {

std::optional<std::string> readProcessFile(std::int32_t pid, const char* name) {
  const std::string path = "/proc/" + std::to_string(pid) + "/" + name;
  const UniqueDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file) return std::nullopt;
  char buffer[512];
  const ssize_t length = read(file.get(), buffer, sizeof buffer);
  if (length <= 0) return std::nullopt;
  return std::string(buffer, static_cast<std::size_t>(length));
}

}  // namespace

std::optional<std::string> processName(std::int32_t pid) {
  auto name = readProcessFile(pid, "comm");
  if (name && name->ends_with('\n')) name->pop_back();
  return name;
}

std::optional<std::int32_t> parentProcess(std::int32_t pid) {
  const auto line = readProcessFile(pid, "stat");
  if (!line) return std::nullopt;
  // "4711 (name) S 4710 …": the name itself may contain anything, so its end is the last parenthesis.
  const std::size_t nameEnd = line->rfind(')');
  if (nameEnd == std::string::npos) return std::nullopt;
  const std::string_view rest = std::string_view(*line).substr(std::min(nameEnd + 4, line->size()));
  std::int32_t parent = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), parent);
  if (error != std::errc()) return std::nullopt;
  return parent;
}

}  // namespace kestrel
