#pragma once

#include <cstdint>
#include <cstdlib>

namespace kestrel {

/// Sums for counts that every decoder has already bounded: an overflow is a programming fault and traps.
inline std::int64_t checkedAdd(std::int64_t a, std::int64_t b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a, b, &sum)) std::abort();
  return sum;
}

}  // namespace kestrel
