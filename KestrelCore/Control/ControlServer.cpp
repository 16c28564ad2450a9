#include "KestrelCore/Control/ControlServer.h"

#include <system_error>
#include <utility>

#include "KestrelCore/Support/DecodingError.h"

namespace kestrel {
namespace {

UnixSocketServer::Protocol controlProtocol() {
  return {UnixSocketServer::Reading::untilEndOfFile, ControlRequest::kMaximumBytes, 2,
          encodeControlReply(ControlReply::failure("The request is too large"))};
}

std::string reasonOf(const UnixSocketServer::StartFailure& failure) {
  if (failure.step == UnixSocketServer::Step::policy) return "it may not be written";
  if (failure.step == UnixSocketServer::Step::pathTooLong) return "the path is too long";
  return std::generic_category().message(failure.code);
}

}  // namespace

ControlServer::ControlServer(Executor& mainExecutor, std::string socketPath,
                             std::shared_ptr<const PeerIdentity> peers,
                             std::shared_ptr<const KestrelWritePolicy> policy, std::shared_ptr<LogSink> sink,
                             ControlService& service)
    : socketPath_(std::move(socketPath)),
      logger_(std::move(sink), "control"),
      service_(service),
      server_(mainExecutor, socketPath_, controlProtocol(), std::move(peers), std::move(policy), logger_,
              [this](std::string_view bytes) { return handle(bytes); }) {}

bool ControlServer::start() {
  const auto failure = server_.start();
  if (!failure) return true;
  logger_.error("Cannot serve the control socket {}: {} ({})", socketPath_, reasonOf(*failure),
                failure->code);
  return false;
}

UnixSocketServer::Reply ControlServer::handle(std::string_view bytes) const {
  try {
    return {encodeControlReply(service_.perform(decodeControlRequest(bytes))), {}};
  } catch (const DecodingError& error) {
    logger_.error("Refused a control request ({} bytes): {}", bytes.size(), error.what());
    return {encodeControlReply(ControlReply::failure(error.what())), {}};
  }
}

}  // namespace kestrel
