#include "KestrelPlatform/Linux/LinuxProcessList.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Agents/ProcessMatching.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/ProcFolder.h"

namespace kestrel {
namespace {

constexpr double kYoungSeconds = 10;
constexpr std::int32_t kLookIntervalSeconds = 5;
constexpr std::int32_t kReadIntervalSeconds = 30;

/// A shell may become the program that it was asked to run at any time.
bool isShell(std::string_view name) {
  constexpr std::array<std::string_view, 7> kShells{"sh", "bash", "dash", "zsh", "fish", "ksh", "busybox"};
  return std::ranges::find(kShells, name) != kShells.end();
}

/// What is known of one process. Times are seconds since boot.
struct KnownProcess {
  std::int32_t pid = 0;
  ino_t identity = 0;
  ProcStat stat;
  /// Empty for kernel threads and for processes that have ended and were not waited for.
  std::string commandLine;
  bool isWatched = false;
  double youngUntil = 0;
  /// When everything was read, and when the command line was.
  double readAt = 0;
  double lookedAt = 0;

  [[nodiscard]] bool isLookDue(double now) const {
    return now < youngUntil || now >= lookedAt + kLookIntervalSeconds || isWatched;
  }
  [[nodiscard]] bool isReadingDue(double now) const { return now >= readAt + kReadIntervalSeconds; }
};

class LinuxProcessList final : public ProcessList {
 public:
  LinuxProcessList(const std::shared_ptr<LogSink>& logSink, LinuxProcessSource source)
      : source_(std::move(source)), proc_(source_.root), logger_(logSink, "agents") {}

  std::optional<std::vector<ProcessRow>> rows() override {
    if (!proc_.list(listed_)) {
      noteFailure(errno);
      return std::nullopt;
    }
    hasListing_ = true;
    update(source_.secondsSinceBoot());
    std::vector<ProcessRow> rows;
    rows.reserve(known_.size());
    for (const auto& process : known_) {
      if (process.commandLine.empty()) continue;
      rows.push_back({process.pid, process.stat.parentPid, process.commandLine});
    }
    return rows;
  }

  std::optional<std::string> sourceName() const override {
    return hasListing_ ? std::optional(source_.root.string()) : std::nullopt;
  }

 private:
  void noteFailure(int reason) {
    known_.clear();
    if (!hasListing_.exchange(false)) return;
    logger_.error("Process list unavailable: cannot read {} ({})", source_.root.string(),
                  std::generic_category().message(reason));
  }

  /// Goes through the listing and what is known side by side, both in order of pid.
  void update(double now) {
    updated_.clear();
    auto known = known_.begin();
    for (const auto& listed : listed_) {
      while (known != known_.end() && known->pid < listed.pid) ++known;
      const bool isSame =
          known != known_.end() && known->pid == listed.pid && known->identity == listed.identity;
      KnownProcess process = isSame ? std::move(*known) : KnownProcess{};
      process.pid = listed.pid;
      process.identity = listed.identity;
      if (isSame ? refresh(process, now) : meet(process, now)) updated_.push_back(std::move(process));
    }
    known_.swap(updated_);
  }

  // These are false for a process that has ended meanwhile.

  bool meet(KnownProcess& process, double now) {
    if (!readStat(process) || !look(process, now)) return false;
    static const auto kTicksPerSecond = static_cast<double>(::sysconf(_SC_CLK_TCK));
    const double start = static_cast<double>(process.stat.startTicks) / kTicksPerSecond;
    process.youngUntil = std::min(start, now) + kYoungSeconds;
    process.readAt = now;
    if (process.youngUntil > now) return true;
    // Old ones met together, at the program's start: spread over time what is read again.
    process.readAt -= process.pid % kReadIntervalSeconds;
    process.lookedAt -= process.pid % kLookIntervalSeconds;
    return true;
  }

  bool refresh(KnownProcess& process, double now) {
    if (process.isReadingDue(now)) return readAgain(process, now);
    if (process.stat.isKernelThread || !process.isLookDue(now)) return true;
    const std::string before = process.commandLine;
    if (!look(process, now)) return false;
    if (process.commandLine == before) return true;
    process.youngUntil = now + kYoungSeconds;
    return readAgain(process, now);
  }

  bool readAgain(KnownProcess& process, double now) {
    const auto startBefore = process.stat.startTicks;
    if (!readStat(process)) return isUnreadable();
    if (process.stat.startTicks != startBefore) {
      process.commandLine.clear();
      return meet(process, now);
    }
    process.readAt = now;
    return look(process, now);
  }

  bool readStat(KnownProcess& process) {
    auto stat = proc_.stat(process.pid);
    if (!stat) return false;
    process.stat = *std::move(stat);
    return true;
  }

  bool look(KnownProcess& process, double now) {
    process.lookedAt = now;
    if (process.stat.isKernelThread) return true;
    const auto words = proc_.commandLine(process.pid);
    if (words) process.commandLine = joinedCommandLine(*words);
    process.isWatched = isShell(process.stat.name) || mayBeAgent(process.commandLine);
    return words || isUnreadable();
  }

  /// It is there, but descriptors or rights are missing: what is known of it stays.
  [[nodiscard]] bool isUnreadable() const { return proc_.lastFailure() == ProcFolder::Failure::other; }

  const LinuxProcessSource source_;
  ProcFolder proc_;
  const Logger logger_;
  std::atomic<bool> hasListing_ = true;
  // Kept from scan to scan, so that a scan allocates little.
  std::vector<ProcFolder::Listed> listed_;
  std::vector<KnownProcess> known_;
  std::vector<KnownProcess> updated_;
};

}  // namespace

double secondsSinceBoot() {
  timespec time{};
  ::clock_gettime(CLOCK_BOOTTIME, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

std::unique_ptr<ProcessList> makeLinuxProcessList(const std::shared_ptr<LogSink>& logSink,
                                                  LinuxProcessSource source) {
  return std::make_unique<LinuxProcessList>(logSink, std::move(source));
}

}  // namespace kestrel
