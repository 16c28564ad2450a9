#include "KestrelRelay/Delivery.h"

#include <cerrno>
#include <cstring>
#include <optional>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include "KestrelCore/Support/UniqueDescriptor.h"

namespace kestrel {

namespace {

constexpr std::string_view kAcknowledgement = "{\"ok\":true}";
constexpr std::size_t kMaximumReplyLength = 4096;

std::optional<sockaddr_un> address(const std::filesystem::path& path) {
  sockaddr_un result{};
  result.sun_family = AF_UNIX;
  const std::string& text = path.native();
  if (text.size() >= sizeof result.sun_path) return std::nullopt;
  text.copy(result.sun_path, text.size());
  return result;
}

/// Bounds each following operation of that direction; a connection to a busy listener counts as sending.
void setTimeout(int socket, int direction, const Deadline& deadline) {
  // Zero would mean without a limit.
  const auto left = std::max<long>(deadline.remaining().count(), 1);
  const timeval timeout{left / 1000, static_cast<suseconds_t>(left % 1000 * 1000)};
  (void)setsockopt(socket, SOL_SOCKET, direction, &timeout, sizeof timeout);
}

std::string failure(std::string_view what) {
  return std::string(what) + ": " + std::strerror(errno);
}

/// The connection, or in `problem` why there is none.
UniqueDescriptor connectTo(const std::filesystem::path& path, const Deadline& deadline,
                           std::string& problem) {
  const auto target = address(path);
  if (!target) {
    problem = "the path of the socket is too long: " + path.native();
    return {};
  }
  UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (!socket) {
    problem = failure("no socket");
    return {};
  }
  setTimeout(socket.get(), SO_SNDTIMEO, deadline);
  if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&*target), sizeof *target) != 0) {
    problem = failure("no connection to " + path.native());
    socket.reset();
  }
  return socket;
}

std::string readReply(int socket, const Deadline& deadline) {
  std::string reply;
  char piece[512];
  while (reply.size() < kMaximumReplyLength && deadline.remaining().count() > 0) {
    setTimeout(socket, SO_RCVTIMEO, deadline);
    const ssize_t length = read(socket, piece, sizeof piece);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) break;
    reply.append(piece, static_cast<std::size_t>(length));
    if (const auto end = reply.find('\n'); end != std::string::npos) return reply.substr(0, end);
  }
  return reply;
}

std::string exchange(int socket, std::string_view record, const Deadline& deadline) {
  const ssize_t written = write(socket, record.data(), record.size());
  if (written < 0) return failure("the event could not be sent");
  if (static_cast<std::size_t>(written) != record.size()) return "the event was sent in part only";
  const std::string reply = readReply(socket, deadline);
  if (reply == kAcknowledgement) return {};
  return reply.empty() ? "no answer from Kestrel" : "Kestrel refused the event: " + reply;
}

}  // namespace

DeliveryResult deliver(const std::filesystem::path& socket, std::string_view record,
                       const Deadline& deadline) {
  DeliveryResult result;
  if (const UniqueDescriptor connection = connectTo(socket, deadline, result.problem)) {
    result.connected = true;
    result.problem = exchange(connection.get(), record, deadline);
  }
  return result;
}

}  // namespace kestrel
