#pragma once

#include <memory>
#include <string>

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Platform/PeerIdentity.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Support/UnixSocketServer.h"

namespace kestrel {

class KestrelWritePolicy;

class HookEventReceiverDelegate {
 public:
  virtual ~HookEventReceiverDelegate() = default;
  /// On the receiver's queue, after the sender got its acknowledgement.
  virtual void didReceiveHookEvent(const HookEvent& event) = 0;
};

/// The application's end of the hook channel: a Unix-domain socket, private to the user, that takes one JSON
/// record per connection and answers with one line. Clients are served one after another on a queue of its
/// own; a silent one costs at most a second. `start`, `stop` and `isRunning` are safe from any thread.
class HookEventReceiver {
 public:
  /// A record has to arrive in one read of this many bytes.
  static constexpr std::size_t kMaximumRecordBytes = 65'536;

  HookEventReceiver(std::string socketPath, std::shared_ptr<const PeerIdentity> peers,
                    std::shared_ptr<const KestrelWritePolicy> policy, std::shared_ptr<const Clock> clock,
                    std::shared_ptr<LogSink> sink);
  ~HookEventReceiver();

  static std::string defaultSocketPath(const Directories& directories) { return directories.hookSocket(); }

  /// Set before `start`.
  void setDelegate(std::weak_ptr<HookEventReceiverDelegate> delegate);

  /// Binds the socket and begins to serve; nothing while running. Throws KestrelWriteSecurityError,
  /// std::filesystem::filesystem_error for the folder, HookEventError for a path that is too long, and
  /// std::system_error for the socket.
  void start();

  /// Ends serving and removes the socket; nothing while stopped. Does not wait for a client being served.
  void stop();

  [[nodiscard]] bool isRunning() const;

 private:
  UnixSocketServer::Reply handle(std::string_view bytes) const;
  /// Logs what kept the server from starting and throws it.
  [[noreturn]] void raise(const UnixSocketServer::StartFailure& failure) const;

  const std::string socketPath_;
  const std::shared_ptr<const PeerIdentity> peers_;
  const std::shared_ptr<const KestrelWritePolicy> policy_;
  const std::shared_ptr<const Clock> clock_;
  const Logger logger_;
  std::weak_ptr<HookEventReceiverDelegate> delegate_;

  mutable Mutex isRunningLock_;
  bool isRunning_ KESTREL_GUARDED_BY(isRunningLock_) = false;
  std::unique_ptr<UnixSocketServer> server_ KESTREL_GUARDED_BY(isRunningLock_);
  /// Last, so that its thread has ended before anything it uses goes.
  SerialQueue queue_{"com.kestrel.hookreceiver"};
};

}  // namespace kestrel
