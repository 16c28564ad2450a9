#include "KestrelCore/Support/SocketConnection.h"

#include <array>
#include <cerrno>
#include <utility>

#include "KestrelCore/Support/JsonObjectEnd.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

bool wouldBlock() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

SocketConnection::SocketConnection(Executor& executor, UniqueDescriptor socket,
                                   const UnixSocketServer::Protocol& protocol,
                                   UnixSocketServer::Handler handler)
    : executor_(executor), socket_(std::move(socket)), protocol_(protocol), handler_(std::move(handler)) {}

void SocketConnection::start(std::function<void()> onEnd) {
  onEnd_ = std::move(onEnd);
  setNonBlocking(socket_.get(), true);
  restartDeadline(protocol_.reading == UnixSocketServer::Reading::untilComplete ? &SocketConnection::handle
                                                                                : &SocketConnection::end);
  readiness_ = executor_.watch(socket_.get(), Executor::Readiness::readable, [self = weak_from_this()] {
    if (const auto connection = self.lock()) connection->readMore();
  });
  if (!readiness_) end();
}

void SocketConnection::restartDeadline(void (SocketConnection::*onDeadline)()) {
  deadline_ = executor_.after(protocol_.timeoutSeconds, [self = weak_from_this(), onDeadline] {
    if (const auto connection = self.lock()) (connection.get()->*onDeadline)();
  });
}

void SocketConnection::readMore() {
  std::array<char, 16'384> buffer{};
  const ssize_t count = ::read(socket_.get(), buffer.data(), buffer.size());
  if (count < 0) {
    if (!wouldBlock()) end();
  } else if (count == 0) {
    handle();
  } else {
    request_.append(buffer.data(), static_cast<std::size_t>(count));
    if (request_.size() > protocol_.maximumRequestBytes || isComplete()) handle();
  }
}

bool SocketConnection::isComplete() {
  if (protocol_.reading != UnixSocketServer::Reading::untilComplete) return false;
  const auto end = endOfJsonObject(request_);
  if (end) request_.resize(*end);
  return end.has_value();
}

void SocketConnection::handle() {
  readiness_.reset();
  if (request_.empty()) return end();
  const bool tooLarge = request_.size() > protocol_.maximumRequestBytes;
  reply_ = tooLarge ? UnixSocketServer::Reply{protocol_.tooLargeReply, {}} : handler_(request_);
  restartDeadline(&SocketConnection::end);
  writeMore();
}

void SocketConnection::writeMore() {
  while (written_ < reply_.bytes.size()) {
    const ssize_t count =
        ::write(socket_.get(), reply_.bytes.data() + written_, reply_.bytes.size() - written_);
    if (count > 0) {
      written_ += static_cast<std::size_t>(count);
    } else if (count < 0 && wouldBlock()) {
      if (readiness_) return;
      readiness_ = executor_.watch(socket_.get(), Executor::Readiness::writable, [self = weak_from_this()] {
        if (const auto connection = self.lock()) connection->writeMore();
      });
      return;
    } else {
      return end();
    }
  }
  if (reply_.afterwards) reply_.afterwards();
  end();
}

void SocketConnection::end() {
  readiness_.reset();
  deadline_.reset();
  socket_.reset();
  if (const auto onEnd = std::exchange(onEnd_, nullptr)) onEnd();
}

}  // namespace kestrel
