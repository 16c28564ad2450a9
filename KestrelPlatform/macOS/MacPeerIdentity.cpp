#include <sys/socket.h>
#include <unistd.h>

#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {

namespace {

class MacPeerIdentity final : public PeerIdentity {
 public:
  std::optional<uid_t> userOf(int socket) const override {
    uid_t user = 0;
    gid_t group = 0;
    if (::getpeereid(socket, &user, &group) != 0) return std::nullopt;
    return user;
  }

  void suppressSignals(int socket) const override {
    // Refused only for a socket whose peer is gone; the write then fails by its own result.
    const int on = 1;
    (void)::setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on);
  }
};

}  // namespace

std::unique_ptr<PeerIdentity> makePeerIdentity() {
  return std::make_unique<MacPeerIdentity>();
}

}  // namespace kestrel
