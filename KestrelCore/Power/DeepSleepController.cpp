#include "KestrelCore/Power/DeepSleepController.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Support/UnixSocket.h"
#include "KestrelCore/Support/Uuid.h"

namespace kestrel {
namespace {

constexpr double kExchangeTimeoutSeconds = 1;
/// Four chances in the life of a lease, but no busy loop for short ones.
constexpr double kRenewalsPerLease = 4;
constexpr double kShortestRenewalSeconds = 5;

ssize_t readOnce(int socket, std::array<char, HelperResponse::kMaximumBytes>& buffer) {
  ssize_t count = -1;
  do {
    count = ::read(socket, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  return count;
}

}  // namespace

DeepSleepController::DeepSleepController(std::string socketPath, std::unique_ptr<Executor> actor,
                                         std::unique_ptr<Executor> renewals, std::shared_ptr<LogSink> sink)
    : socketPath_(std::move(socketPath)),
      logger_(std::move(sink), "deepsleep"),
      renewals_(std::move(renewals)),
      actor_(std::move(actor)) {}

DeepSleepController::DeepSleepController(std::string socketPath, std::shared_ptr<LogSink> sink)
    : DeepSleepController(std::move(socketPath), std::make_unique<SerialQueue>("com.kestrel.deepsleep"),
                          std::make_unique<SerialQueue>("com.kestrel.deepsleepcontroller"), std::move(sink)) {
}

DeepSleepController::~DeepSleepController() = default;

std::string DeepSleepController::defaultSocketPath(const Directories& directories) {
  std::error_code error;
  const bool isSystemWide = std::filesystem::exists(directories.systemHelperSocket, error);
  return isSystemWide ? directories.systemHelperSocket : directories.userHelperSocket();
}

std::optional<HelperResponse> DeepSleepController::sendStaticRequest(const HelperRequest& request,
                                                                     const std::string& socketPath) {
  const auto bytes = encodeHelperRequest(request);
  const auto address = socketAddress(socketPath);
  const UniqueDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  if (!bytes || !address || !socket) return std::nullopt;
  (void)::fcntl(socket.get(), F_SETFD, FD_CLOEXEC);
  setSocketTimeout(socket.get(), SO_RCVTIMEO, kExchangeTimeoutSeconds);
  setSocketTimeout(socket.get(), SO_SNDTIMEO, kExchangeTimeoutSeconds);
  if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0 ||
      !sendAll(socket.get(), *bytes)) {
    return std::nullopt;
  }
  std::array<char, HelperResponse::kMaximumBytes> buffer{};
  const ssize_t count = readOnce(socket.get(), buffer);
  if (count < 1) return std::nullopt;
  try {
    return decodeHelperResponse({buffer.data(), static_cast<std::size_t>(count)});
  } catch (const DecodingError&) {
    return std::nullopt;
  }
}

void DeepSleepController::isDeepHoldActive(std::function<void(bool)> done) {
  actor_->post([this, done = std::move(done)] { done(currentLeaseId_.has_value()); });
}

void DeepSleepController::status(std::function<void(const DeepSleepStatus&)> done) {
  actor_->post([this, done = std::move(done)] {
    const auto response = sendStaticRequest({HelperCommand::status, {}, {}}, socketPath_);
    done(response && response->status ? *response->status : DeepSleepStatus{});
  });
}

void DeepSleepController::acquire(double ttlSeconds, std::function<void(bool)> done) {
  actor_->post([this, ttlSeconds, done = std::move(done)] { done(acquireNow(ttlSeconds)); });
}

void DeepSleepController::release(std::function<void()> done) {
  actor_->post([this, done = std::move(done)] {
    releaseNow();
    done();
  });
}

bool DeepSleepController::acquireNow(double ttlSeconds) {
  // Kept when the helper refuses, so that the next attempt asks under the same name.
  if (!currentLeaseId_) currentLeaseId_ = randomUuid();
  const auto response = sendStaticRequest({HelperCommand::acquire, currentLeaseId_, ttlSeconds}, socketPath_);
  if (!response || !response->ok) {
    logger_.error("Failed to acquire deep hold from helper");
    return false;
  }
  startRenewal(*currentLeaseId_, ttlSeconds);
  logger_.info("Successfully acquired deep hold lease {}", *currentLeaseId_);
  return true;
}

void DeepSleepController::startRenewal(const std::string& leaseId, double ttlSeconds) {
  renewalTimer_.reset();
  const double interval = std::max(ttlSeconds / kRenewalsPerLease, kShortestRenewalSeconds);
  // A renewal that fails lets the lease lapse, and the helper's watchdog ends the hold.
  renewalTimer_ = renewals_->repeat(interval, interval,
                                    [request = HelperRequest{HelperCommand::renew, leaseId, ttlSeconds},
                                     path = socketPath_] { (void)sendStaticRequest(request, path); });
}

void DeepSleepController::releaseNow() {
  renewalTimer_.reset();
  if (!currentLeaseId_) return;
  const std::string leaseId = *currentLeaseId_;
  currentLeaseId_.reset();
  (void)sendStaticRequest({HelperCommand::release, leaseId, {}}, socketPath_);
  logger_.info("Released deep hold lease {}", leaseId);
}

}  // namespace kestrel
