#include <csignal>

#include "KestrelControl/Control.h"

int main(int argc, char** argv) {
  // A Kestrel that ends while it is asked must not end this program silently.
  std::signal(SIGPIPE, SIG_IGN);
  const auto options = kestrel::ControlOptions::parse(argc, argv);
  return options.exitStatus ? *options.exitStatus : kestrel::runControl(options, argv[0]);
}
