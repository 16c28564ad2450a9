#pragma once

#include <cmath>
#include <fmt/format.h>
#include <string>

namespace kestrel {

/// The nearest whole number, halves away from zero, as text. Takes any double: "8", "inf".
inline std::string wholePercent(double percentage) {
  // The sum turns -0 into 0.
  return fmt::format("{:.0f}", std::round(percentage) + 0.0);
}

}  // namespace kestrel
