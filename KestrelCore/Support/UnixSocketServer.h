#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

#include "KestrelCore/Platform/PeerIdentity.h"
#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

class KestrelWritePolicy;

/// A Unix-domain stream-socket server for one request and one reply per connection, private to the user
/// unless the protocol says otherwise: the folder gets mode 0700 when it is created, the socket 0600, and a
/// peer that is neither the same effective user nor root is closed without a reply.
class UnixSocketServer {
 public:
  enum class Reading {
    /// Exactly one blocking read on the executor's thread, one client after another: for an executor that
    /// serves nothing else.
    once,
    /// Until the client half-closes; many clients at a time, nothing blocks.
    untilEndOfFile,
    /// As before, but also until one JSON object is complete or the time is over; the handler gets what there
    /// is then, and nothing that follows the object.
    untilComplete,
  };

  struct Protocol {
    Reading reading = Reading::once;
    std::size_t maximumRequestBytes = 65'536;
    /// For the request to arrive, and again for the reply to leave.
    double timeoutSeconds = 1;
    /// Sent when a request read until its end is longer than allowed.
    std::string tooLargeReply = {};
    /// Of the socket file.
    mode_t socketMode = 0600;
    /// Whom to serve beside the same user and root; nobody when empty. On the executor's thread.
    std::function<bool(uid_t)> alsoServes = nullptr;
  };

  struct Reply {
    std::string bytes;
    /// Runs after the reply was sent, before the connection is closed; may be empty.
    std::function<void()> afterwards;
  };
  /// On the executor's thread. The bytes live only during the call.
  using Handler = std::function<Reply(std::string_view request)>;

  enum class Step { policy, folder, socket, pathTooLong, bind, listen };
  /// What kept the server from starting, and errno (0 where there is none).
  struct StartFailure {
    Step step;
    int code;
  };

  UnixSocketServer(Executor& executor, std::string path, Protocol protocol,
                   std::shared_ptr<const PeerIdentity> peers,
                   std::shared_ptr<const KestrelWritePolicy> policy, Logger logger, Handler handler);
  /// Stops listening and removes the socket file. A handler under way on another thread finishes; clients
  /// whose requests are still being read are closed.
  ~UnixSocketServer();
  UnixSocketServer(const UnixSocketServer&) = delete;
  UnixSocketServer& operator=(const UnixSocketServer&) = delete;

  /// Replaces whatever stands at the path, so the caller makes sure that no other server uses it. Once, from
  /// any thread.
  [[nodiscard]] std::optional<StartFailure> start();

 private:
  class Listener;
  std::optional<StartFailure> bindAndListen(int socket) const;

  const std::string path_;
  const mode_t socketMode_;
  const std::shared_ptr<const KestrelWritePolicy> policy_;
  std::shared_ptr<Listener> listener_;
  bool isListening_ = false;
};

}  // namespace kestrel
