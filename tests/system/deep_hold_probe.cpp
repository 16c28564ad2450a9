// The application's side of the deep hold by itself: takes a lease and keeps it alive until it is killed.
//
//   deep_hold_probe SOCKET SECONDS    "granted" or "refused" on standard output; SECONDS is the lease's
//   length
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "KestrelCore/Power/DeepSleepController.h"
#include "KestrelCore/Support/StreamLogSink.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const auto clock = std::make_shared<kestrel::SystemClock>();
  kestrel::DeepSleepController controller(
      argv[1], kestrel::makeStreamLogSink(STDERR_FILENO, kestrel::LogLineStyle::file, clock));
  controller.acquire(std::atof(argv[2]), [](bool granted) {
    std::puts(granted ? "granted" : "refused");
    std::fflush(stdout);
  });
  for (;;) ::pause();
}
