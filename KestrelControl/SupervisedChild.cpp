#include "KestrelControl/SupervisedChild.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

extern char** environ;

namespace kestrel {
namespace {

constexpr int kNotFound = 127;
constexpr int kNotStarted = 126;
constexpr int kSignalBase = 128;

/// Sent to this process alone, as a rule.
constexpr std::array<int, 4> kPassedOn{SIGTERM, SIGHUP, SIGUSR1, SIGUSR2};
/// The terminal sends these to the whole group: the command decides what becomes of both.
constexpr std::array<int, 2> kOfTheTerminal{SIGINT, SIGQUIT};

/// Where the handler writes the numbers of signals.
int signalPipe[2] = {-1, -1};

void onSignal(int number) {
  const int error = errno;
  const auto byte = static_cast<unsigned char>(number);
  // A full pipe holds enough to wake the reader.
  (void)!write(signalPipe[1], &byte, 1);
  errno = error;
}

bool openSignalPipe() {
  if (pipe(signalPipe) != 0) return false;
  for (const int end : signalPipe) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, fcntl(end, F_GETFL) | O_NONBLOCK);
  }
  return true;
}

/// Catches the signals; those that were ignored from the start (nohup) stay so. Those that the command has to
/// begin with at their defaults are added to the set.
void catchSignals(sigset_t& defaults) {
  const auto handle = [&](int number, void (*handler)(int)) {
    struct sigaction before {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
    sigaddset(&defaults, number);
  };
  for (const int number : kPassedOn) handle(number, onSignal);
  for (const int number : kOfTheTerminal) handle(number, onSignal);
  handle(SIGCHLD, onSignal);
  sigaddset(&defaults, SIGPIPE);
}

int start(const std::vector<std::string>& words, const sigset_t& defaults, pid_t& pid) {
  std::vector<char*> arguments;
  for (const auto& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawnattr_t attributes;
  if (const int error = posix_spawnattr_init(&attributes); error != 0) return error;
  posix_spawnattr_setsigdefault(&attributes, &defaults);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  const int error = posix_spawnp(&pid, arguments[0], nullptr, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  return error;
}

void passOn(pid_t pid) {
  unsigned char number = 0;
  while (read(signalPipe[0], &number, 1) == 1) {
    for (const int passed : kPassedOn) {
      if (number == passed) kill(pid, passed);
    }
  }
}

}  // namespace

SupervisedChild::Outcome SupervisedChild::run(int intervalSeconds, const std::function<void()>& onInterval) {
  if (!openSignalPipe()) return {kNotStarted, std::generic_category().message(errno)};
  sigset_t defaults;
  sigemptyset(&defaults);
  catchSignals(defaults);
  pid_t pid = -1;
  if (const int error = start(words_, defaults, pid); error != 0)
    return {error == ENOENT ? kNotFound : kNotStarted, std::generic_category().message(error)};

  for (;;) {
    pollfd readable{signalPipe[0], POLLIN, 0};
    const int ready = poll(&readable, 1, intervalSeconds * 1000);
    if (ready == 0) onInterval();
    passOn(pid);
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) != pid) continue;
    if (WIFSIGNALED(status)) return {kSignalBase + WTERMSIG(status), "", WTERMSIG(status)};
    return {WEXITSTATUS(status), ""};
  }
}

}  // namespace kestrel
