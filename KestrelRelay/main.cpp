#include <csignal>
#include <cstdio>
#include <sys/time.h>
#include <unistd.h>

#include "KestrelRelay/Relay.h"
#include "KestrelRelay/RelayOptions.h"

namespace {

using kestrel::RelayOptions;

volatile std::sig_atomic_t statusAtTimeout = kestrel::kRelayDone;

void endAtTimeout(int) {
  _exit(statusAtTimeout);
}

/// Agents wait for their hooks, so the relay ends in time even where a bounded call did not keep its bound.
void limitLifetime() {
  std::signal(SIGALRM, endAtTimeout);
  sigset_t alarm;
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  sigprocmask(SIG_UNBLOCK, &alarm, nullptr);
  const itimerval limit{{0, 0}, {0, 220'000}};
  setitimer(ITIMER_REAL, &limit, nullptr);
}

/// A closing terminal or an interrupt reaches the hook as well as its agent: the last event must still go
/// out, and no agent may see its hook fail.
void ignoreInterruptions() {
  for (const int signal : {SIGPIPE, SIGHUP, SIGINT, SIGTERM}) std::signal(signal, SIG_IGN);
}

int complain(const std::string& problem, int status) {
  std::fprintf(stderr, "kestrel-relay: %s\n", problem.c_str());
  return status;
}

int relayStrictly(const RelayOptions& options) {
  if (!options.problems.empty()) return complain(options.problems.front(), kestrel::kRelayUsage);
  const std::string problem = kestrel::relayHook(options);
  return problem.empty() ? kestrel::kRelayDone : complain(problem, kestrel::kRelayNotDelivered);
}

int relay(const RelayOptions& options) {
  if (options.strict) {
    statusAtTimeout = kestrel::kRelayNotDelivered;
    return relayStrictly(options);
  }
  (void)kestrel::relayHook(options);
  return kestrel::kRelayDone;
}

}  // namespace

int main(int argc, char** argv) {
  limitLifetime();
  ignoreInterruptions();
  try {
    const RelayOptions options = RelayOptions::parse(argc, argv);
    if (options.help) return std::fputs(RelayOptions::usage(), stdout) < 0 ? 1 : 0;
    if (options.version) return std::puts("kestrel-relay " KESTREL_VERSION " (Beta)") < 0 ? 1 : 0;
    // Nothing is buffered or held that the end of the process does not take care of.
    _exit(relay(options));
  } catch (...) {
    _exit(statusAtTimeout);
  }
}
