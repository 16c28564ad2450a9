#include "KestrelCore/Support/ChildProcess.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "KestrelCore/Support/Mutex.h"
#include "KestrelCore/Support/UniqueDescriptor.h"

extern char** environ;

namespace kestrel {
namespace {

using MonotonicClock = std::chrono::steady_clock;

/// A started child; ends and reaps it when nobody waited for it.
class Child {
 public:
  explicit Child(pid_t pid) : pid_(pid) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (pid_ <= 0) return;
    kill();
    while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }

  void kill() const { ::kill(pid_, SIGKILL); }

  /// The exit status; absent when the child, which may have closed its output long ago, runs at the deadline.
  std::optional<int> wait(MonotonicClock::time_point deadline) {
    int status = 0;
    auto pause = std::chrono::milliseconds(1);
    while (::waitpid(pid_, &status, WNOHANG) == 0) {
      if (MonotonicClock::now() >= deadline) return std::nullopt;
      std::this_thread::sleep_for(pause);
      pause = std::min(pause * 2, std::chrono::milliseconds(32));
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  pid_t pid_;
};

/// Between the making of a pipe and its closing in children, no other child may be started.
Mutex& startingMutex() {
  static Mutex mutex(LockRank::leaf);
  return mutex;
}

std::optional<pid_t> spawn(const std::vector<std::string>& arguments, int outputDescriptor) {
  std::vector<char*> words;
  for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDWR, 0);
  ::posix_spawn_file_actions_adddup2(&actions, outputDescriptor, STDOUT_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDERR_FILENO);
  pid_t pid = -1;
  const int error = ::posix_spawn(&pid, words[0], &actions, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? std::optional(pid) : std::nullopt;
}

/// Reads until the end, the limit or the deadline; false at the deadline.
bool readOutput(int descriptor, MonotonicClock::time_point deadline, std::size_t limit,
                ChildProcessResult& result) {
  std::array<char, 65'536> buffer{};
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - MonotonicClock::now());
    if (left.count() <= 0) return false;
    pollfd readable{descriptor, POLLIN, 0};
    const int ready = ::poll(&readable, 1, static_cast<int>(std::min<long long>(left.count(), 60'000)));
    if (ready < 0 && errno != EINTR) return false;
    if (ready <= 0) continue;
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return true;
    const std::size_t room = limit - result.output.size();
    result.output.append(buffer.data(), std::min(room, static_cast<std::size_t>(count)));
    result.outputWasCut = static_cast<std::size_t>(count) > room;
    if (result.outputWasCut) return true;
  }
}

}  // namespace

std::optional<ChildProcessResult> runChildProcess(const std::vector<std::string>& arguments,
                                                  const ChildProcessLimits& limits) {
  if (arguments.empty()) return std::nullopt;
  const auto timeout = std::chrono::duration<double>(limits.timeoutSeconds);
  const auto deadline = MonotonicClock::now() + std::chrono::duration_cast<MonotonicClock::duration>(timeout);
  std::array<int, 2> ends{};
  LockGuard starting(startingMutex());
  if (::pipe(ends.data()) != 0) return std::nullopt;
  const UniqueDescriptor output(ends[0]);
  UniqueDescriptor input(ends[1]);
  for (const int end : ends) (void)::fcntl(end, F_SETFD, FD_CLOEXEC);

  const auto pid = spawn(arguments, input.get());
  input.reset();
  starting.unlock();
  if (!pid) return std::nullopt;
  Child child(*pid);
  ChildProcessResult result;
  if (!readOutput(output.get(), deadline, limits.maximumOutputBytes, result)) return std::nullopt;
  if (result.outputWasCut) child.kill();
  const auto status = child.wait(deadline);
  if (!status) return std::nullopt;
  result.status = *status;
  return result;
}

}  // namespace kestrel
