#pragma once

#include <optional>
#include <sys/types.h>

namespace kestrel {

/// Who sits at the machine. Safe from any thread.
class ActiveSeat {
 public:
  virtual ~ActiveSeat() = default;
  /// The user whose session is in the foreground now; absent when there is none, or the system does not tell.
  [[nodiscard]] virtual std::optional<uid_t> activeUser() const = 0;
};

}  // namespace kestrel
