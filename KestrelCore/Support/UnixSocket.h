#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>

#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

/// The longest path of a Unix-domain socket on every supported system, with its terminating NUL, in bytes.
inline constexpr std::size_t kMaximumSocketPathBytes = 103;

/// Absent when the path is too long.
std::optional<sockaddr_un> socketAddress(std::string_view path);

/// Bounds a blocking socket's reads or writes (SO_RCVTIMEO or SO_SNDTIMEO).
void setSocketTimeout(int socket, int option, double seconds);

void setNonBlocking(int descriptor, bool nonBlocking);

/// Writes everything to a blocking socket; false when the peer is gone or too slow.
[[nodiscard]] bool sendAll(int socket, std::string_view bytes);

/// How a request over a socket ended.
struct SocketExchange {
  enum class Outcome { replied, nobodyListens, failed };
  Outcome outcome = Outcome::failed;
  std::string reply;
};

/// Connects, sends the request, half-closes, and reads the reply until its end. Blocks for at most
/// `timeoutSeconds` at each step; a reply longer than `maximumReplyBytes` has failed.
SocketExchange exchangeOverSocket(const std::string& path, std::string_view request, double timeoutSeconds,
                                  std::size_t maximumReplyBytes);

}  // namespace kestrel
