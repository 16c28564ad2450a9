#include "KestrelRelay/PayloadReader.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace kestrel {

namespace {

constexpr std::size_t kPieceSize = 4 * 1024;
/// After the JSON is complete: some writers keep the pipe open for good.
constexpr Deadline::Milliseconds kPatienceForTheEnd{10};

/// Waits at most that long. A descriptor that was closed by the other side counts as readable: it has an end.
bool isReadable(int descriptor, Deadline::Milliseconds timeout) {
  pollfd request{descriptor, POLLIN, 0};
  return poll(&request, 1, static_cast<int>(timeout.count())) > 0 && (request.revents & POLLNVAL) == 0;
}

}  // namespace

HookPayload readPayload(int descriptor, const Deadline& deadline) {
  HookPayloadParser parser;
  if (isatty(descriptor) != 0) return {};
  char piece[kPieceSize];
  while (deadline.remaining().count() > 0) {
    const auto patience = parser.isComplete() ? kPatienceForTheEnd : deadline.remaining();
    if (!isReadable(descriptor, std::min(patience, deadline.remaining()))) break;
    const ssize_t length = read(descriptor, piece, sizeof piece);
    if (length < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (length <= 0) break;
    parser.feed({piece, static_cast<std::size_t>(length)});
  }
  return parser.payload();
}

}  // namespace kestrel
