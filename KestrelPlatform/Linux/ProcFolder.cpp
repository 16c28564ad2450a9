#include "KestrelPlatform/Linux/ProcFolder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/Utf8.h"

namespace kestrel {
namespace {

/// PF_KTHREAD of the kernel's task flags.
constexpr std::uint64_t kKernelThreadFlag = 0x00200000;

template <typename Number>
std::optional<Number> numberFrom(std::string_view text) {
  Number number = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, number);
  if (error != std::errc() || end != last) return std::nullopt;
  return number;
}

/// The blank-separated fields after the name, from the state on.
std::array<std::string_view, 20> fieldsOf(std::string_view text) {
  std::array<std::string_view, 20> fields;
  for (auto& field : fields) {
    const auto blank = text.find(' ');
    field = text.substr(0, blank);
    text.remove_prefix(blank == std::string_view::npos ? text.size() : blank + 1);
  }
  return fields;
}

}  // namespace

std::optional<ProcStat> parseProcStat(std::string_view text) {
  // The name may hold blanks and parentheses.
  const auto nameStart = text.find('(');
  const auto nameEnd = text.rfind(") ");
  if (nameStart == std::string_view::npos || nameEnd == std::string_view::npos || nameEnd < nameStart) {
    return std::nullopt;
  }
  const auto fields = fieldsOf(text.substr(nameEnd + 2));
  const auto parent = numberFrom<std::int32_t>(fields[1]);
  const auto flags = numberFrom<std::uint64_t>(fields[6]);
  const auto startTicks = numberFrom<std::uint64_t>(fields[19]);
  if (!parent || !flags || !startTicks) return std::nullopt;
  const auto name = text.substr(nameStart + 1, nameEnd - nameStart - 1);
  return ProcStat{std::string(name), *parent, (*flags & kKernelThreadFlag) != 0, *startTicks};
}

std::string joinedCommandLine(std::string_view words) {
  std::string line(words);
  std::ranges::replace_if(
      line, [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; }, ' ');
  const auto last = line.find_last_not_of(' ');
  line.resize(last == std::string::npos ? 0 : last + 1);
  line.erase(0, line.find_first_not_of(' '));
  makeUtf8(line);
  return line;
}

bool ProcFolder::list(std::vector<Listed>& processes) {
  processes.clear();
  if (!rewind()) return false;
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(folder_.get());
    if (entry == nullptr) break;
    if (const auto pid = numberFrom<std::int32_t>(entry->d_name)) processes.push_back({*pid, entry->d_ino});
  }
  if (errno != 0 || processes.empty()) {
    const int reason = errno != 0 ? errno : ENOENT;
    folder_.reset();
    errno = reason;
    return false;
  }
  // The kernel's own folder is in order already.
  if (!std::ranges::is_sorted(processes, {}, &Listed::pid)) std::ranges::sort(processes, {}, &Listed::pid);
  return true;
}

bool ProcFolder::rewind() {
  if (folder_) {
    ::rewinddir(folder_.get());
    return true;
  }
  folder_.reset(::opendir(root_.c_str()));
  return folder_ != nullptr;
}

std::optional<ProcStat> ProcFolder::stat(std::int32_t pid) {
  const auto text = read(pid, "stat");
  return text ? parseProcStat(*text) : std::nullopt;
}

std::optional<std::string_view> ProcFolder::commandLine(std::int32_t pid) {
  return read(pid, "cmdline");
}

std::optional<std::string_view> ProcFolder::read(std::int32_t pid, std::string_view file) {
  std::array<char, 32> path{};
  char* end = std::to_chars(path.data(), path.data() + path.size(), pid).ptr;
  *end++ = '/';
  std::ranges::copy(file, end);
  const UniqueDescriptor descriptor(::openat(::dirfd(folder_.get()), path.data(), O_RDONLY | O_CLOEXEC));
  const ssize_t length = descriptor ? ::read(descriptor.get(), buffer_.data(), buffer_.size()) : -1;
  if (length < 0) {
    lastFailure_ = errno == ENOENT || errno == ESRCH ? Failure::gone : Failure::other;
    return std::nullopt;
  }
  lastFailure_ = Failure::none;
  return std::string_view(buffer_.data(), static_cast<std::size_t>(length));
}

}  // namespace kestrel
