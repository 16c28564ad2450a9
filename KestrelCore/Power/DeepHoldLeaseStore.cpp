#include "KestrelCore/Power/DeepHoldLeaseStore.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

constexpr std::size_t kMaximumStateFileBytes = 64 * 1024;

/// "2026-11-21 03:27:05 +0000".
std::string descriptionOf(Date date) {
  const std::string text = iso8601(date);
  return text.substr(0, 10) + " " + text.substr(11, 8) + " +0000";
}

std::int64_t wholeSeconds(double seconds) {
  constexpr double kLimit = 9e18;
  return std::isnan(seconds) ? 0 : static_cast<std::int64_t>(std::clamp(seconds, -kLimit, kLimit));
}

}  // namespace

Json encode(const DeepHoldStateRecord& record) {
  Json object = {{"isHolding", record.isHolding}, {"originalSleepDisabled", record.originalSleepDisabled}};
  setIfPresent(object, "activeLeaseId", record.activeLeaseId);
  if (record.expiresAt) object["expiresAt"] = record.expiresAt->secondsSinceReferenceDate();
  return object;
}

DeepHoldStateRecord decodeDeepHoldStateRecord(const Json& object) {
  DeepHoldStateRecord record;
  record.isHolding = requiredBool(object, "isHolding");
  if (isGiven(object, "activeLeaseId")) record.activeLeaseId = requiredString(object, "activeLeaseId");
  if (isGiven(object, "expiresAt")) record.expiresAt = requiredDate(object, "expiresAt");
  record.originalSleepDisabled = requiredBool(object, "originalSleepDisabled");
  return record;
}

DeepHoldLeaseStore::DeepHoldLeaseStore(SystemPowerControlling& powerController,
                                       std::optional<StateFile> stateFile, std::shared_ptr<const Clock> clock,
                                       std::shared_ptr<LogSink> sink)
    : powerController_(powerController),
      stateFile_(std::move(stateFile)),
      clock_(std::move(clock)),
      logger_(std::move(sink), "lease", kHelperSubsystem) {
  load();
}

void DeepHoldLeaseStore::load() {
  const LockGuard guard(lock_);
  const auto content =
      stateFile_ ? readWholeFile(stateFile_->path, kMaximumStateFileBytes) : std::optional<std::string>();
  if (content) {
    try {
      state_ = decodeDeepHoldStateRecord(parseJsonObject(*content));
      return;
    } catch (const DecodingError& error) {
      logger_.error("The state file {} cannot be read: {}", stateFile_->path.string(), error.what());
    }
  }
  state_.originalSleepDisabled = powerController_.readSleepDisabled();
}

DeepSleepStatus DeepHoldLeaseStore::status() const {
  const LockGuard guard(lock_);
  return {true,
          state_.isHolding,
          state_.activeLeaseId,
          state_.expiresAt,
          state_.originalSleepDisabled,
          powerController_.readSleepDisabled()};
}

DeepHoldStateRecord DeepHoldLeaseStore::state() const {
  const LockGuard guard(lock_);
  return state_;
}

bool DeepHoldLeaseStore::acquire(const std::string& leaseId, double ttlSeconds) {
  const LockGuard guard(lock_);
  const Date expiry = expiryAfter(ttlSeconds);
  if (state_.isHolding) {
    state_.activeLeaseId = leaseId;
    state_.expiresAt = expiry;
    logger_.info("Renewed existing deep hold with lease {}", leaseId);
    save();
    return true;
  }
  state_ = {true, leaseId, expiry, powerController_.readSleepDisabled()};
  // On disk before the switch is thrown: after a crash in between it must be known whose doing that was.
  save();
  if (!state_.originalSleepDisabled) powerController_.writeSleepDisabled(true);
  logger_.info("Acquired deep hold lease {} (TTL: {}s, original: {})", leaseId, wholeSeconds(ttlSeconds),
               state_.originalSleepDisabled);
  return true;
}

bool DeepHoldLeaseStore::renew(const std::string& leaseId, double ttlSeconds) {
  const LockGuard guard(lock_);
  if (!state_.isHolding) return false;
  const Date expiry = expiryAfter(ttlSeconds);
  state_.activeLeaseId = leaseId;
  state_.expiresAt = expiry;
  save();
  logger_.debug("Renewed lease {} until {}", leaseId, descriptionOf(expiry));
  return true;
}

bool DeepHoldLeaseStore::release(const std::optional<std::string>& leaseId) {
  const LockGuard guard(lock_);
  if (!state_.isHolding) return true;
  if (leaseId && state_.activeLeaseId && *leaseId != *state_.activeLeaseId) {
    logger_.info("Release request for lease {} ignored, active is {}", *leaseId, *state_.activeLeaseId);
    return false;
  }
  releaseHold();
  save();
  return true;
}

bool DeepHoldLeaseStore::checkWatchdog() {
  const LockGuard guard(lock_);
  const Date now = clock_->now();
  if (!state_.isHolding || !state_.expiresAt || now < *state_.expiresAt) return false;
  logger_.error("Lease expired at {} (current time: {}). Watchdog releasing deep hold!",
                descriptionOf(*state_.expiresAt), descriptionOf(now));
  releaseHold();
  save();
  return true;
}

void DeepHoldLeaseStore::releaseHold() {
  if (state_.originalSleepDisabled) {
    logger_.info("Prior state was already sleep disabled, leaving untouched");
  } else {
    powerController_.writeSleepDisabled(false);
    logger_.info("Restored system sleep state to original: sleep enabled");
  }
  state_.isHolding = false;
  state_.activeLeaseId.reset();
  state_.expiresAt.reset();
}

/// A failure is in the log, and the lease goes on without the file. Once a second is too often to wait for a
/// disk, and after a crash of the machine nothing is held any more.
void DeepHoldLeaseStore::save() const {
  if (!stateFile_) return;
  (void)stateFile_->writer->write(stateFile_->path, dumpJson(encode(state_)), Durability::process);
}

/// Always finite, whatever is asked for: anything else would have no form in the state file.
Date DeepHoldLeaseStore::expiryAfter(double ttlSeconds) const {
  const double seconds = ttlSeconds > kMinimumTtlSeconds ? ttlSeconds : kMinimumTtlSeconds;
  const double expiry = clock_->now().secondsSinceReferenceDate() + seconds;
  return Date::sinceReferenceDate(std::min(expiry, std::numeric_limits<double>::max()));
}

}  // namespace kestrel
