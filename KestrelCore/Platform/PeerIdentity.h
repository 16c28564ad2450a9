#pragma once

#include <optional>
#include <sys/types.h>

namespace kestrel {

/// Who is at the other end of a connected Unix-domain socket. Safe from any thread.
class PeerIdentity {
 public:
  virtual ~PeerIdentity() = default;
  /// The peer's effective user when it connected; absent when the system does not tell.
  [[nodiscard]] virtual std::optional<uid_t> userOf(int socket) const = 0;
  /// Keeps a write to a vanished peer from raising SIGPIPE, where that is set on the socket.
  virtual void suppressSignals(int socket) const = 0;
};

}  // namespace kestrel
