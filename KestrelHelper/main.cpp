#include <csignal>
#include <cstdio>
#include <string_view>
#include <utility>

#include "KestrelHelper/HelperProgram.h"

namespace {

constexpr const char* kHelp =
    "Usage: kestrel-helper [--version | --help]\n"
    "Keeps the computer awake with its lid closed while Kestrel asks for it. Run by root it serves whoever\n"
    "sits at the machine, else only the user who runs it. It ends by itself what nobody renews.\n";

int usageError(const char* argument) {
  std::fprintf(stderr, "kestrel-helper: there is no option '%s'\n%s", argument, kHelp);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  // A client that hangs up early must not end the program.
  std::signal(SIGPIPE, SIG_IGN);
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "--version") return std::puts("kestrel-helper " KESTREL_VERSION " (Beta)") < 0;
    if (argument == "--help") return std::fputs(kHelp, stdout) < 0;
    return usageError(argv[i]);
  }
  auto places = kestrel::helperPlaces();
  if (!places) {
    std::fputs("kestrel-helper cannot start: it needs a home directory, and HOME names none.\n", stderr);
    return 1;
  }
  return kestrel::HelperProgram(*std::move(places)).run();
}
