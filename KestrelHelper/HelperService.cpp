#include "KestrelHelper/HelperService.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "KestrelCore/Support/DecodingError.h"

namespace kestrel {
namespace {

/// How long the answer to the last request may take to leave.
constexpr double kFarewellSeconds = 1;

HelperResponse refusal(std::string reason) {
  return {false, std::nullopt, std::move(reason)};
}

HelperResponse outcome(bool ok, const char* reason) {
  return ok ? HelperResponse{true, std::nullopt, std::nullopt} : refusal(reason);
}

double secondsLeft(const DeepHoldStateRecord& state, Date now) {
  return state.expiresAt ? *state.expiresAt - now : std::numeric_limits<double>::infinity();
}

}  // namespace

HelperService::HelperService(const Context& context, std::function<void()> onUninstall)
    : platform_(context.platform),
      store_(context.store),
      executor_(context.executor),
      clock_(context.clock),
      logger_(context.logSink, "helper", kHelperSubsystem),
      onUninstall_(std::move(onUninstall)),
      battery_(*platform_.powerSource, *platform_.lowPowerMode, context.logSink),
      thermal_(*platform_.thermal, context.logSink) {}

void HelperService::start() {
  repair();
  battery_.setOnPowerSourceChanged([this](const PowerSourceSnapshot&) { letGoInDanger(); });
  thermal_.setOnThermalStateChanged([this](SystemThermalState) { letGoInDanger(); });
  battery_.start();
  thermal_.start();
  watch();
  watchdog_ = executor_.repeat(kWatchdogSeconds, kWatchdogSeconds, [this] { watch(); });
}

void HelperService::stop() {
  watchdog_.reset();
  (void)release(std::nullopt);
}

/// The state file tells of a hold whose helper died. Whether its override died with it depends on the system.
void HelperService::repair() {
  const DeepHoldStateRecord state = store_.state();
  if (!state.isHolding) return;
  longestLeaseSeconds_ = secondsLeft(state, clock_->now());
  if (longestLeaseSeconds_ > kMaximumTtlSeconds) {
    logger_.error("The hold of an earlier helper has no credible end; it ends now");
    (void)release(std::nullopt);
  } else if (longestLeaseSeconds_ > 0) {
    logger_.info("Going on with the deep hold of an earlier helper, lease {}",
                 state.activeLeaseId.value_or("unknown"));
    if (!state.originalSleepDisabled) platform_.sleepOverride->writeSleepDisabled(true);
  }
}

void HelperService::watch() {
  const bool originalSleepDisabled = store_.state().originalSleepDisabled;
  if (store_.checkWatchdog()) afterHold(originalSleepDisabled);
  boundLease();
  letGoInDanger();
}

/// A clock that was set back would make a lease last that nobody renews.
void HelperService::boundLease() {
  constexpr double kTolerance = 1;
  const DeepHoldStateRecord state = store_.state();
  if (!state.isHolding || secondsLeft(state, clock_->now()) <= longestLeaseSeconds_ + kTolerance) return;
  logger_.info("The clock was set back; the lease begins anew");
  (void)store_.renew(state.activeLeaseId.value_or(""), longestLeaseSeconds_);
}

std::optional<std::string> HelperService::danger() const {
  if (thermal_.currentThermalState() == SystemThermalState::critical) return "The machine is too hot";
  const PowerSourceSnapshot power = battery_.currentSnapshot();
  if (power.batteryPercent.value_or(100) <= kEmptyBatteryPercent && !power.isCharging && !power.isOnAC) {
    return "The battery is almost empty";
  }
  return std::nullopt;
}

void HelperService::letGoInDanger() {
  if (!store_.state().isHolding) return;
  const auto reason = danger();
  if (!reason) return;
  logger_.error("{}: the deep hold ends", *reason);
  (void)release(std::nullopt);
}

bool HelperService::release(const std::optional<std::string>& leaseId) {
  const DeepHoldStateRecord before = store_.state();
  if (!store_.release(leaseId)) return false;
  if (before.isHolding) afterHold(before.originalSleepDisabled);
  return true;
}

/// A lid that was closed meanwhile has had no effect.
void HelperService::afterHold(bool originalSleepDisabled) {
  if (originalSleepDisabled || !platform_.lid->isClosed().value_or(false)) return;
  logger_.info("The deep hold ended with the lid closed");
  platform_.sleep->sleepForClosedLid();
}

UnixSocketServer::Reply HelperService::answer(std::string_view bytes) {
  try {
    const HelperRequest request = decodeHelperRequest(bytes);
    const bool isLast = request.command == HelperCommand::uninstall;
    return {encodeHelperResponse(perform(request)), isLast ? onUninstall_ : nullptr};
  } catch (const DecodingError& error) {
    logger_.error("Refused a request of {} bytes: {}", bytes.size(), error.what());
    return {encodeHelperResponse(refusal(error.what())), nullptr};
  }
}

UnixSocketServer::Protocol HelperService::protocol(std::shared_ptr<const ActiveSeat> seat) {
  UnixSocketServer::Protocol protocol{UnixSocketServer::Reading::untilComplete, HelperRequest::kMaximumBytes,
                                      1, encodeHelperResponse(refusal("The request is too large"))};
  if (seat) {
    protocol.socketMode = 0666;
    protocol.alsoServes = [seat = std::move(seat)](uid_t user) { return seat->activeUser() == user; };
  }
  return protocol;
}

HelperResponse HelperService::perform(const HelperRequest& request) {
  if (request.leaseId && request.leaseId->size() > kMaximumLeaseIdBytes)
    return refusal("leaseId is too long");
  switch (request.command) {
    case HelperCommand::status:
      return {true, store_.status(), std::nullopt};
    case HelperCommand::acquire:
    case HelperCommand::renew:
      return lease(request);
    case HelperCommand::release:
      return outcome(release(request.leaseId), "Another lease is active");
    case HelperCommand::uninstall:
      return uninstall();
  }
  return refusal("Unknown command");
}

HelperResponse HelperService::lease(const HelperRequest& request) {
  if (!request.leaseId) return refusal("leaseId is missing");
  if (!request.ttlSeconds) return refusal("ttlSeconds is missing");
  const double ttl = *request.ttlSeconds;
  if (!(ttl <= kMaximumTtlSeconds)) return refusal("ttlSeconds is too large");
  if (auto reason = danger()) return refusal(*std::move(reason));
  const bool granted = request.command == HelperCommand::acquire ? store_.acquire(*request.leaseId, ttl)
                                                                 : store_.renew(*request.leaseId, ttl);
  if (granted) longestLeaseSeconds_ = std::max(ttl, DeepHoldLeaseStore::kMinimumTtlSeconds);
  return outcome(granted, "No deep hold is active");
}

HelperResponse HelperService::uninstall() {
  logger_.info("Asked to go");
  (void)release(std::nullopt);
  // The client may be gone before the answer.
  uninstallation_ = executor_.after(kFarewellSeconds, onUninstall_);
  return outcome(true, "");
}

}  // namespace kestrel
