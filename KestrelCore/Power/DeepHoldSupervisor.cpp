#include "KestrelCore/Power/DeepHoldSupervisor.h"

#include <utility>

namespace kestrel {
namespace {

constexpr double kLeaseSeconds = 60;
constexpr double kRefreshSeconds = 10;
/// While what the helper was asked for does not show yet.
constexpr double kImpatientRefreshSeconds = 1;
constexpr const char* kHelperName = "kestrel-helper";

}  // namespace

DeepHoldSupervisor::DeepHoldSupervisor(std::unique_ptr<DeepSleepControlling> controller,
                                       Executor& mainExecutor)
    : mainExecutor_(mainExecutor), controller_(std::move(controller)) {}

void DeepHoldSupervisor::follow(bool isWanted) {
  if (isWanted) {
    isWanted_ = true;
    if (!isAsking_) acquire();
  } else if (isWanted_) {
    release([] {});
  }
}

void DeepHoldSupervisor::tick(Date now) {
  const auto& status = helperStatus_.get();
  const bool shows = status && status->isDeepHoldActive && status->currentSystemSleepDisabled;
  const double interval =
      isWanted_ && granted_.value_or(false) && !shows ? kImpatientRefreshSeconds : kRefreshSeconds;
  // A clock that was set back makes the last one old, too.
  const double age = refreshedAt_ ? now - *refreshedAt_ : interval;
  if (age >= 0 && age < interval) return;
  refreshedAt_ = now;
  refreshStatus();
}

void DeepHoldSupervisor::acquire() {
  isAsking_ = true;
  controller_->acquire(kLeaseSeconds,
                       [this, toMain = toMainThread(), episode = std::weak_ptr(episode_)](bool granted) {
                         toMain([this, episode, granted] {
                           if (!episode.expired()) onAcquired(granted);
                         });
                       });
}

void DeepHoldSupervisor::onAcquired(bool granted) {
  isAsking_ = false;
  if (granted_ == granted) return;
  granted_ = granted;
  refreshStatus();
}

void DeepHoldSupervisor::release(std::function<void()> done) {
  isWanted_ = false;
  isAsking_ = false;
  granted_.reset();
  episode_ = std::make_shared<int>();
  controller_->release([this, toMain = toMainThread(), done = std::move(done)] {
    toMain([this, done] {
      refreshStatus();
      done();
    });
  });
}

void DeepHoldSupervisor::refreshStatus() {
  refreshAgain_ = isRefreshing_;
  if (isRefreshing_) return;
  isRefreshing_ = true;
  controller_->status([this, toMain = toMainThread()](const DeepSleepStatus& status) {
    toMain([this, status] {
      isRefreshing_ = false;
      const bool changed = helperStatus_.get() != status;
      helperStatus_.set(status);
      if (refreshAgain_) refreshStatus();
      if (changed) onChange_();
    });
  });
}

std::function<void(std::function<void()>)> DeepHoldSupervisor::toMainThread() {
  return [&executor = mainExecutor_, alive = std::weak_ptr(alive_)](std::function<void()> task) {
    executor.post([alive, task = std::move(task)] {
      if (!alive.expired()) task();
    });
  };
}

std::vector<HoldEvidence> DeepHoldSupervisor::evidence() const {
  if (!isWanted_) return {};
  const auto& status = helperStatus_.get();
  const auto says = [](HoldEvidenceState state, std::string detail) {
    return std::vector<HoldEvidence>{{kHelperName, HoldKind::lid, state, std::move(detail)}};
  };
  if (!status || !granted_) return says(HoldEvidenceState::pending, "");
  if (!status->isHelperInstalled) return says(HoldEvidenceState::unavailable, "the helper does not answer");
  if (!*granted_) return says(HoldEvidenceState::refused, "");
  if (status->isDeepHoldActive && status->currentSystemSleepDisabled)
    return says(HoldEvidenceState::held, "");
  return says(HoldEvidenceState::pending, "sleep is not yet switched off");
}

}  // namespace kestrel
