#pragma once

#include <functional>
#include <memory>
#include <string>

#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocketServer.h"

namespace kestrel {

/// One client whose request is read until its end, without blocking. Lives on the server's executor thread.
class SocketConnection : public std::enable_shared_from_this<SocketConnection> {
 public:
  SocketConnection(Executor& executor, UniqueDescriptor socket, const UnixSocketServer::Protocol& protocol,
                   UnixSocketServer::Handler handler);

  /// Begins to read. `onEnd` is called once, last of all.
  void start(std::function<void()> onEnd);

 private:
  void restartDeadline(void (SocketConnection::*onDeadline)());
  void readMore();
  bool isComplete();
  void handle();
  void writeMore();
  void end();

  Executor& executor_;
  UniqueDescriptor socket_;
  const UnixSocketServer::Protocol protocol_;
  UnixSocketServer::Handler handler_;
  std::function<void()> onEnd_;
  std::string request_;
  UnixSocketServer::Reply reply_;
  std::size_t written_ = 0;
  RegistrationPtr readiness_;
  RegistrationPtr deadline_;
};

}  // namespace kestrel
