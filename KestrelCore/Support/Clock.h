#pragma once

#include "KestrelCore/Support/Date.h"

namespace kestrel {

/// The wall clock. All logic asks an injected Clock, so that tests can move time. Safe from any thread.
class Clock {
 public:
  virtual ~Clock() = default;
  [[nodiscard]] virtual Date now() const = 0;
};

/// The machine's clock.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] Date now() const override;
};

}  // namespace kestrel
