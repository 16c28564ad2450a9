#include "KestrelCore/Agents/HookEventReceiver.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/DecodingError.h"

namespace kestrel {

HookEventReceiver::HookEventReceiver(std::string socketPath, std::shared_ptr<const PeerIdentity> peers,
                                     std::shared_ptr<const KestrelWritePolicy> policy,
                                     std::shared_ptr<const Clock> clock, std::shared_ptr<LogSink> sink)
    : socketPath_(std::move(socketPath)),
      peers_(std::move(peers)),
      policy_(std::move(policy)),
      clock_(std::move(clock)),
      logger_(std::move(sink), "hooks") {}

HookEventReceiver::~HookEventReceiver() {
  stop();
}

void HookEventReceiver::setDelegate(std::weak_ptr<HookEventReceiverDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void HookEventReceiver::start() {
  const LockGuard guard(isRunningLock_);
  if (isRunning_) return;
  policy_->assertCanWrite(socketPath_);
  const UnixSocketServer::Protocol protocol{UnixSocketServer::Reading::once, kMaximumRecordBytes, 1, {}};
  auto server = std::make_unique<UnixSocketServer>(queue_, socketPath_, protocol, peers_, policy_, logger_,
                                                   [this](std::string_view bytes) { return handle(bytes); });
  if (const auto failure = server->start()) raise(*failure);
  server_ = std::move(server);
  isRunning_ = true;
  logger_.info("HookEventReceiver started on {}", socketPath_);
}

void HookEventReceiver::raise(const UnixSocketServer::StartFailure& failure) const {
  const std::error_code code(failure.code, std::generic_category());
  switch (failure.step) {
    case UnixSocketServer::Step::policy:
    case UnixSocketServer::Step::folder:
      throw std::filesystem::filesystem_error("Cannot create the folder of the hook socket", socketPath_,
                                              code);
    case UnixSocketServer::Step::pathTooLong:
      throw HookEventError(HookEventError::Code::payloadTooLarge);
    case UnixSocketServer::Step::socket:
      logger_.error("Failed to create UNIX domain socket: {}", failure.code);
      break;
    case UnixSocketServer::Step::bind:
      logger_.error("Failed to bind UNIX domain socket at {}: {}", socketPath_, failure.code);
      break;
    case UnixSocketServer::Step::listen:
      logger_.error("Failed to listen on socket: {}", failure.code);
      break;
  }
  throw std::system_error(code);
}

void HookEventReceiver::stop() {
  const LockGuard guard(isRunningLock_);
  if (!isRunning_) return;
  isRunning_ = false;
  server_.reset();
  logger_.info("HookEventReceiver stopped");
}

bool HookEventReceiver::isRunning() const {
  const LockGuard guard(isRunningLock_);
  return isRunning_;
}

UnixSocketServer::Reply HookEventReceiver::handle(std::string_view bytes) const {
  try {
    HookEvent event = HookEvent::parse(bytes, clock_->now());
    logger_.debug("Received event: agent={} state={} session={}", rawValue(event.agent),
                  rawValue(event.state), event.sessionId);
    return {"{\"ok\":true}\n", [weak = delegate_, event = std::move(event)] {
              if (const auto delegate = weak.lock()) delegate->didReceiveHookEvent(event);
            }};
  } catch (const DecodingError& error) {
    logger_.error("Failed to parse hook event ({} bytes): {}", bytes.size(), error.what());
    return {std::string("{\"ok\":false,\"error\":\"") + error.what() + "\"}\n", {}};
  }
}

}  // namespace kestrel
