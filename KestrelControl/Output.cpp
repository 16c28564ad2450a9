#include "KestrelControl/Output.h"

#include <cstdio>

namespace kestrel {

int complain(const std::string& problem) {
  std::fprintf(stderr, "kestrelctl: %s\n", problem.c_str());
  return kControlFailed;
}

int print(const std::string& text) {
  const bool written = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
  return written ? kControlDone : complain("the output cannot be written");
}

}  // namespace kestrel
