#include "KestrelCore/Support/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

constexpr std::array<int, 3> kSignals{SIGINT, SIGTERM, SIGHUP};

/// All that a handler can reach.
volatile std::sig_atomic_t pipeForSignals = -1;

void handle(int) {
  const int savedError = errno;
  // A full pipe holds word of an earlier signal, which is enough.
  [[maybe_unused]] const auto written = ::write(static_cast<int>(pipeForSignals), "!", 1);
  errno = savedError;
}

void setAction(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  (void)::sigaction(signal, &action, nullptr);
}

bool isIgnored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void drain(int descriptor) {
  std::array<char, 16> buffer{};
  while (::read(descriptor, buffer.data(), buffer.size()) > 0) {
  }
}

}  // namespace

TerminationSignals::TerminationSignals(Executor& executor, std::function<void()> onSignal) {
  std::array<int, 2> ends{-1, -1};
  if (::pipe(ends.data()) != 0) return;
  readEnd_ = UniqueDescriptor(ends[0]);
  writeEnd_ = UniqueDescriptor(ends[1]);
  for (const int end : ends) {
    (void)::fcntl(end, F_SETFD, FD_CLOEXEC);
    setNonBlocking(end, true);
  }
  registration_ = executor.watch(readEnd_.get(), Executor::Readiness::readable,
                                 [descriptor = readEnd_.get(), callback = std::move(onSignal)] {
                                   drain(descriptor);
                                   callback();
                                 });
  if (!registration_) return;
  pipeForSignals = writeEnd_.get();
  for (const int signal : kSignals) {
    if (signal != SIGHUP || !isIgnored(signal)) setAction(signal, &handle);
  }
}

TerminationSignals::~TerminationSignals() {
  if (!registration_) return;
  for (const int signal : kSignals) {
    if (!isIgnored(signal)) setAction(signal, SIG_DFL);
  }
  pipeForSignals = -1;
}

}  // namespace kestrel
