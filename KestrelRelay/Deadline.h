#pragma once

#include <algorithm>
#include <chrono>

namespace kestrel {

/// A moment on the monotonic clock by which something has to be over.
class Deadline {
 public:
  using Milliseconds = std::chrono::milliseconds;

  explicit Deadline(Milliseconds fromNow) : end_(std::chrono::steady_clock::now() + fromNow) {}

  /// Never negative.
  [[nodiscard]] Milliseconds remaining() const {
    const auto left = std::chrono::ceil<Milliseconds>(end_ - std::chrono::steady_clock::now());
    return std::max(left, Milliseconds(0));
  }

 private:
  std::chrono::steady_clock::time_point end_;
};

}  // namespace kestrel
