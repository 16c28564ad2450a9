#include "KestrelPlatform/Linux/SysfsReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

std::optional<std::string> readSmallFile(const std::filesystem::path& path) {
  // Whatever stands there must not make the main thread wait.
  const UniqueDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file) return std::nullopt;
  std::array<char, 4096> buffer{};
  const ssize_t length = ::read(file.get(), buffer.data(), buffer.size());
  if (length < 0) return std::nullopt;
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  text.erase(text.find_last_not_of(" \t\r\n") + 1);
  return text;
}

std::optional<std::int64_t> readIntegerFile(const std::filesystem::path& path) {
  const auto text = readSmallFile(path);
  if (!text || text->empty()) return std::nullopt;
  std::int64_t value = 0;
  const char* end = text->data() + text->size();
  const auto [stop, error] = std::from_chars(text->data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::vector<std::filesystem::path> pathsIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  std::error_code error;
  for (std::filesystem::directory_iterator each(folder, error), end; !error && each != end;
       each.increment(error)) {
    paths.push_back(each->path());
  }
  std::ranges::sort(paths);
  return paths;
}

}  // namespace kestrel
