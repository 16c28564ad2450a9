#pragma once

#include <atomic>
#include <optional>
#include <unistd.h>

#include "KestrelCore/Platform/PeerIdentity.h"

namespace kestrel {

/// Every peer is the same scripted user, at first the one who runs this process.
class SimulatedPeerIdentity final : public PeerIdentity {
 public:
  [[nodiscard]] std::optional<uid_t> userOf(int) const override { return user_.load(); }
  void suppressSignals(int) const override { ++suppressions_; }

  void set(std::optional<uid_t> user) { user_ = user; }
  /// How often a socket's signals were suppressed.
  [[nodiscard]] int suppressions() const { return suppressions_; }

 private:
  std::atomic<std::optional<uid_t>> user_{::geteuid()};
  mutable std::atomic<int> suppressions_{0};
};

}  // namespace kestrel
