#include "KestrelCore/Support/UnixSocket.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <sys/time.h>

namespace kestrel {

std::optional<sockaddr_un> socketAddress(std::string_view path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() + 1 > kMaximumSocketPathBytes) return std::nullopt;
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

void setSocketTimeout(int socket, int option, double seconds) {
  timeval timeout{};
  timeout.tv_sec = static_cast<time_t>(seconds);
  timeout.tv_usec = static_cast<suseconds_t>((seconds - std::floor(seconds)) * 1e6);
  (void)::setsockopt(socket, SOL_SOCKET, option, &timeout, sizeof timeout);
}

void setNonBlocking(int descriptor, bool nonBlocking) {
  const int flags = ::fcntl(descriptor, F_GETFL);
  const int wanted = nonBlocking ? flags | O_NONBLOCK : flags & ~O_NONBLOCK;
  if (flags >= 0 && wanted != flags) (void)::fcntl(descriptor, F_SETFL, wanted);
}

bool sendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(socket, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

SocketExchange exchangeOverSocket(const std::string& path, std::string_view request, double timeoutSeconds,
                                  std::size_t maximumReplyBytes) {
  using Outcome = SocketExchange::Outcome;
  const auto address = socketAddress(path);
  const UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (!address || !socket) return {};
  (void)::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
  setSocketTimeout(socket.get(), SO_RCVTIMEO, timeoutSeconds);
  setSocketTimeout(socket.get(), SO_SNDTIMEO, timeoutSeconds);
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0) {
    const bool absent = errno == ENOENT || errno == ECONNREFUSED;
    return {absent ? Outcome::nobodyListens : Outcome::failed, {}};
  }
  // A server may refuse a request before it has read all of it, so a failure to send is not yet the end.
  (void)sendAll(socket.get(), request);
  (void)::shutdown(socket.get(), SHUT_WR);

  SocketExchange exchange;
  std::array<char, 16'384> buffer{};
  for (;;) {
    const ssize_t count = ::read(socket.get(), buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    const bool ended = count == 0 || (count < 0 && errno == ECONNRESET);
    if ((count < 0 && !ended) || exchange.reply.size() > maximumReplyBytes) return {};
    if (ended) break;
    exchange.reply.append(buffer.data(), static_cast<std::size_t>(count));
  }
  exchange.outcome = exchange.reply.empty() ? Outcome::failed : Outcome::replied;
  return exchange;
}

}  // namespace kestrel
