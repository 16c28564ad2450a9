#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "KestrelApp/CommandLine.h"
#include "KestrelApp/HeadlessApplication.h"

namespace {

/// Where the caller closed a standard descriptor, its number must not go to a socket that messages would
/// reach.
void occupyStandardDescriptors() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDONLY);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) ::close(descriptor);
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardDescriptors();
  // A client that hangs up early must not end the program.
  std::signal(SIGPIPE, SIG_IGN);
  const std::vector<std::string> arguments(argv, argv + argc);
  if (const auto answer = kestrel::answerToOptions(arguments)) {
    std::fputs(answer->c_str(), stdout);
    return 0;
  }
  auto directories = kestrel::userDirectories();
  if (!directories) {
    std::fputs("Kestrel cannot start: it needs a home directory, and HOME names none.\n", stderr);
    return 1;
  }
  return kestrel::HeadlessApplication(*std::move(directories), arguments.empty() ? "" : arguments[0]).run();
}
