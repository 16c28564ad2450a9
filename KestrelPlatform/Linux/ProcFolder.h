#pragma once

#include <cstdint>
#include <dirent.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// What a process's `stat` file says of it.
struct ProcStat {
  /// The short name, at most 15 bytes; line feeds and backslashes in it are escaped.
  std::string name;
  std::int32_t parentPid = 0;
  bool isKernelThread = false;
  /// In clock ticks since the machine started.
  std::uint64_t startTicks = 0;
};

/// Absent when the text is no such file.
std::optional<ProcStat> parseProcStat(std::string_view text);

/// The words of a `cmdline` file joined by blanks, as UTF-8 of one line without blanks at its ends.
std::string joinedCommandLine(std::string_view words);

/// Reads a folder as the kernel shows processes at /proc. Not thread-safe. Views stay good until the next
/// reading.
class ProcFolder {
 public:
  struct Listed {
    std::int32_t pid = 0;
    /// Another process that gets the same pid gets another one of these.
    ino_t identity = 0;
  };
  /// What a reading that gave nothing says of the process.
  enum class Failure { none, gone, other };

  explicit ProcFolder(std::filesystem::path root) : root_(std::move(root)) {}

  /// All processes, in ascending order; false, with errno set, when there is no such folder or no process.
  [[nodiscard]] bool list(std::vector<Listed>& processes);

  [[nodiscard]] std::optional<ProcStat> stat(std::int32_t pid);
  /// The first 64 KiB, with a NUL after each word unless the process rewrote it.
  [[nodiscard]] std::optional<std::string_view> commandLine(std::int32_t pid);
  [[nodiscard]] Failure lastFailure() const { return lastFailure_; }

 private:
  struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
  };

  [[nodiscard]] bool rewind();
  std::optional<std::string_view> read(std::int32_t pid, std::string_view file);

  std::filesystem::path root_;
  std::unique_ptr<DIR, CloseFolder> folder_;
  std::string buffer_ = std::string(64UL * 1024, '\0');
  Failure lastFailure_ = Failure::none;
};

}  // namespace kestrel
