#include "KestrelPlatform/Linux/ServiceHold.h"

#include <utility>

namespace kestrel {
namespace {

/// After this the service counts as refusing, although a late answer is still taken.
constexpr double kPatienceSeconds = 5;
constexpr double kRetrySeconds = 15;

}  // namespace

ServiceHold::ServiceHold(InhibitorService& service, HoldKind kind, std::string reason,
                         const HoldContext& context)
    : service_(service), kind_(kind), reason_(std::move(reason)), context_(context) {}

void ServiceHold::update() {
  switch (service_.presence()) {
    case InhibitorService::Presence::unknown:
      return;
    case InhibitorService::Presence::absent:
      return onServiceGone();
    case InhibitorService::Presence::present:
      if (generation_ != service_.generation()) onNewService();
      return;
  }
}

void ServiceHold::onServiceGone() {
  generation_ = 0;
  episode_.reset();
  timer_.reset();
  asking_ = false;
  if (!service_.remembersGrants()) grant_.reset();
  settle(wasHeld_ ? HoldEvidenceState::lost : HoldEvidenceState::unavailable, service_.absence());
}

/// What the service still knows is not asked for again; the old grant is kept until a new one replaces it.
void ServiceHold::onNewService() {
  generation_ = service_.generation();
  episode_ = std::make_shared<int>();
  asking_ = false;
  unproven_ = false;
  if (!service_.remembersGrants()) grant_.reset();
  if (grant_) {
    readBack();
  } else {
    take();
  }
}

/// What was refused or lost shows as such until the answer is there.
void ServiceHold::take() {
  asking_ = true;
  if (state_ == HoldEvidenceState::unavailable) {
    settle(HoldEvidenceState::pending, {}, true);
  } else {
    settle(state_, detail_, true);
  }
  timer_ = context_.executor.after(kPatienceSeconds,
                                   [this] { settle(HoldEvidenceState::refused, "no answer yet"); });
  service_.take(kind_, reason_, [this, episode = std::weak_ptr(episode_)](InhibitorService::Answer answer) {
    if (episode.lock()) onAnswer(std::move(answer));
  });
}

void ServiceHold::onAnswer(InhibitorService::Answer answer) {
  asking_ = false;
  timer_.reset();
  if (answer.grant) {
    grant_ = std::move(answer.grant);
    unproven_ = true;
    return readBack();
  }
  settle(HoldEvidenceState::refused, std::move(answer.refusal));
  retryLater();
}

void ServiceHold::readBack() {
  if (!grant_ || asking_ || generation_ == 0 || generation_ != service_.generation()) return;
  service_.readBack(kind_, reason_, [this, episode = std::weak_ptr(episode_)](std::optional<bool> shown) {
    if (episode.lock()) onReadBack(shown);
  });
}

void ServiceHold::onReadBack(std::optional<bool> shown) {
  if (asking_) return;
  if (!shown) {
    settle(state_, detail_);  // Whether it is in force cannot be told now; a later reading may.
  } else if (*shown) {
    wasHeld_ = true;
    unproven_ = false;
    timer_.reset();
    settle(HoldEvidenceState::held, {});
  } else {
    onNotShown();
  }
}

void ServiceHold::onNotShown() {
  const HoldEvidenceState state = wasHeld_ ? HoldEvidenceState::lost : HoldEvidenceState::pending;
  if (unproven_) {
    settle(state, "granted, but not shown by the service");
    retryLater();
  } else {
    settle(state, "no longer shown by the service");
    take();
  }
}

void ServiceHold::retryLater() {
  timer_ = context_.executor.after(kRetrySeconds, [this] {
    if (unproven_) {
      readBack();
    } else {
      take();
    }
  });
}

void ServiceHold::settle(HoldEvidenceState state, std::string detail, bool waiting) {
  if (state == state_ && detail == detail_ && waiting == waiting_) return;
  const bool worthALine = state != state_ || (state == HoldEvidenceState::refused && detail != detail_);
  state_ = state;
  detail_ = std::move(detail);
  waiting_ = waiting;
  if (worthALine) log();
  context_.onChange();
}

void ServiceHold::log() const {
  const auto kind = rawValue(kind_);
  if (state_ == HoldEvidenceState::refused || state_ == HoldEvidenceState::lost) {
    context_.logger.error("The {} hold at the {} is {}: {}", kind, service_.title(), rawValue(state_),
                          detail_);
  } else if (state_ == HoldEvidenceState::held) {
    context_.logger.debug("The {} hold at the {} is in force", kind, service_.title());
  }
}

}  // namespace kestrel
