#pragma once

#include <cstdio>
#include <cstdlib>

namespace kestrel {

/// Ends the run as a finding when something that always has to hold does not.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "violated: %s\n", what);
  std::abort();
}

}  // namespace kestrel
