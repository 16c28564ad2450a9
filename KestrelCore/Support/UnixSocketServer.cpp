#include "KestrelCore/Support/UnixSocketServer.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/PrivateFolder.h"
#include "KestrelCore/Support/SocketConnection.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

constexpr int kBacklog = 64;
constexpr std::size_t kMaximumConnections = 64;
/// How long to leave a listening socket alone whose `accept` fails for want of resources.
constexpr double kAcceptPauseSeconds = 1;

}  // namespace

/// Everything that lives on the executor's thread. Shared with the tasks there, so that a server may be
/// destroyed on another thread while a client is being served.
class UnixSocketServer::Listener : public std::enable_shared_from_this<UnixSocketServer::Listener> {
 public:
  Listener(Executor& executor, Protocol protocol, std::shared_ptr<const PeerIdentity> peers, Logger logger,
           Handler handler)
      : executor_(executor),
        protocol_(std::move(protocol)),
        peers_(std::move(peers)),
        logger_(std::move(logger)),
        handler_(std::move(handler)) {}

  void start(UniqueDescriptor socket) {
    socket_ = std::move(socket);
    executor_.post([self = shared_from_this()] { self->watch(); });
  }

  /// From any thread.
  void stop() {
    executor_.post([self = shared_from_this()] {
      self->resume_.reset();
      self->readiness_.reset();
      self->socket_.reset();
    });
  }

 private:
  void watch() {
    if (!socket_) return;
    readiness_ = executor_.watch(socket_.get(), Executor::Readiness::readable, [self = weak_from_this()] {
      if (const auto listener = self.lock()) listener->acceptAll();
    });
  }

  void acceptAll() {
    while (socket_) {
      UniqueDescriptor client(::accept(socket_.get(), nullptr, nullptr));
      if (client) {
        serve(std::move(client));
      } else if (errno != EINTR && errno != ECONNABORTED) {
        if (errno != EAGAIN && errno != EWOULDBLOCK) pauseAfter(errno);
        return;
      }
    }
  }

  void pauseAfter(int error) {
    logger_.error("Cannot accept a connection: {} ({})", std::generic_category().message(error), error);
    readiness_.reset();
    resume_ = executor_.after(kAcceptPauseSeconds, [self = weak_from_this()] {
      if (const auto listener = self.lock()) listener->watch();
    });
  }

  void serve(UniqueDescriptor client) {
    (void)::fcntl(client.get(), F_SETFD, FD_CLOEXEC);
    peers_->suppressSignals(client.get());
    if (!isTrusted(client.get())) return;
    if (protocol_.reading == Reading::once) return serveOnce(client.get());
    if (connections_.size() >= kMaximumConnections) return;
    auto connection = std::make_shared<SocketConnection>(executor_, std::move(client), protocol_, handler_);
    connections_.insert(connection);
    connection->start([self = weak_from_this(), key = std::weak_ptr(connection)] {
      if (const auto listener = self.lock()) listener->connections_.erase(key.lock());
    });
  }

  void serveOnce(int client) {
    setNonBlocking(client, false);  // Some systems let it inherit the listening socket's mode.
    setSocketTimeout(client, SO_RCVTIMEO, protocol_.timeoutSeconds);
    if (buffer_.empty()) buffer_.resize(protocol_.maximumRequestBytes);
    ssize_t count = 0;
    do {
      count = ::read(client, buffer_.data(), buffer_.size());
    } while (count < 0 && errno == EINTR);
    if (count < 1) return;
    const Reply reply = handler_(std::string_view(buffer_.data(), static_cast<std::size_t>(count)));
    (void)sendAll(client, reply.bytes);  // One line, which the socket's buffer takes at once.
    if (reply.afterwards) reply.afterwards();
  }

  bool isTrusted(int client) const {
    const auto user = peers_->userOf(client);
    if (user && (*user == ownUser_ || *user == 0)) return true;
    if (user && protocol_.alsoServes && protocol_.alsoServes(*user)) return true;
    logger_.error("Refused a connection of user {}", user ? static_cast<long>(*user) : -1L);
    return false;
  }

  Executor& executor_;
  const Protocol protocol_;
  const std::shared_ptr<const PeerIdentity> peers_;
  const Logger logger_;
  const Handler handler_;
  const uid_t ownUser_ = ::geteuid();
  UniqueDescriptor socket_;
  std::string buffer_;
  std::set<std::shared_ptr<SocketConnection>> connections_;
  RegistrationPtr readiness_;
  RegistrationPtr resume_;
};

UnixSocketServer::UnixSocketServer(Executor& executor, std::string path, Protocol protocol,
                                   std::shared_ptr<const PeerIdentity> peers,
                                   std::shared_ptr<const KestrelWritePolicy> policy, Logger logger,
                                   Handler handler)
    : path_(std::move(path)),
      socketMode_(protocol.socketMode),
      policy_(std::move(policy)),
      listener_(std::make_shared<Listener>(executor, std::move(protocol), std::move(peers), std::move(logger),
                                           std::move(handler))) {}

UnixSocketServer::~UnixSocketServer() {
  listener_->stop();
  if (isListening_) ::unlink(path_.c_str());
}

std::optional<UnixSocketServer::StartFailure> UnixSocketServer::start() {
  if (!policy_->mayWrite(path_)) return StartFailure{Step::policy, 0};
  if (const int error = createPrivateFolders(std::filesystem::path(path_).parent_path()); error != 0) {
    return StartFailure{Step::folder, error};
  }
  ::unlink(path_.c_str());
  UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (!socket) return StartFailure{Step::socket, errno};
  (void)::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
  setNonBlocking(socket.get(), true);
  if (const auto failure = bindAndListen(socket.get())) return failure;
  isListening_ = true;
  listener_->start(std::move(socket));
  return std::nullopt;
}

std::optional<UnixSocketServer::StartFailure> UnixSocketServer::bindAndListen(int socket) const {
  const auto address = socketAddress(path_);
  if (!address) return StartFailure{Step::pathTooLong, 0};
  if (::bind(socket, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0) {
    return StartFailure{Step::bind, errno};
  }
  (void)::chmod(path_.c_str(), socketMode_);
  if (::listen(socket, kBacklog) == 0) return std::nullopt;
  const int error = errno;
  ::unlink(path_.c_str());
  return StartFailure{Step::listen, error};
}

}  // namespace kestrel
