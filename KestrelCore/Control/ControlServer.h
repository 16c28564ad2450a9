#pragma once

#include <memory>
#include <string>

#include "KestrelCore/Control/ControlService.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/UnixSocketServer.h"

namespace kestrel {

/// The control socket: one JSON request and one JSON reply per connection, for the same user only. Main
/// thread.
class ControlServer {
 public:
  ControlServer(Executor& mainExecutor, std::string socketPath, std::shared_ptr<const PeerIdentity> peers,
                std::shared_ptr<const KestrelWritePolicy> policy, std::shared_ptr<LogSink> sink,
                ControlService& service);

  /// False when the socket could not be bound; the log tells why. Kestrel runs on without it.
  bool start();

 private:
  UnixSocketServer::Reply handle(std::string_view bytes) const;

  const std::string socketPath_;
  const Logger logger_;
  ControlService& service_;
  UnixSocketServer server_;
};

}  // namespace kestrel
