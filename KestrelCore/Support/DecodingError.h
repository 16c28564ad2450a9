#pragma once

#include <stdexcept>

namespace kestrel {

/// Thrown by every decoder. `what()` is one line for people, free of double quotes and control characters,
/// so that it can stand inside a JSON string as it is.
class DecodingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kestrel
