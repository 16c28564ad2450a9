#include <sys/socket.h>
#include <unistd.h>

#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

class LinuxPeerIdentity final : public PeerIdentity {
 public:
  [[nodiscard]] std::optional<uid_t> userOf(int socket) const override {
    ucred peer{};
    socklen_t length = sizeof(peer);
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) != 0) return std::nullopt;
    // The kernel's answer for a socket that nobody is connected to.
    if (length != sizeof(peer) || peer.uid == static_cast<uid_t>(-1)) return std::nullopt;
    return peer.uid;
  }

  // Linux has no such socket option: writers pass MSG_NOSIGNAL, and the executables ignore SIGPIPE.
  void suppressSignals(int) const override {}
};

}  // namespace

std::unique_ptr<PeerIdentity> makePeerIdentity() {
  return std::make_unique<LinuxPeerIdentity>();
}

}  // namespace kestrel
