#include "KestrelCore/Presentation/OnboardingTrial.h"

#include <fmt/format.h>
#include <utility>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/StatusLine.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

constexpr const char* kSession = "kestrel-onboarding";
constexpr double kStepTimeoutSeconds = 1;
constexpr std::size_t kMaximumReplyBytes = 4096;

std::string record(AgentState state, Date now) {
  HookEvent event;
  event.agent = AgentType::custom;
  event.sessionId = kSession;
  event.state = state;
  event.timestamp = now;
  return event.toJSONData();
}

/// What kept Kestrel from taking the record; absent when it did. Blocks.
std::optional<std::string> send(const std::string& socketPath, const std::string& bytes) {
  const auto exchange = exchangeOverSocket(socketPath, bytes, kStepTimeoutSeconds, kMaximumReplyBytes);
  if (exchange.outcome == SocketExchange::Outcome::nobodyListens) {
    return "Nothing listens at " + socketPath;
  }
  if (exchange.outcome == SocketExchange::Outcome::failed) return "Kestrel did not answer in time";
  if (exchange.reply.find("\"ok\":true") != std::string::npos) return std::nullopt;
  return "Kestrel refused the event";
}

}  // namespace

OnboardingTrial::OnboardingTrial(AppCoordinator& coordinator, Executor& mainExecutor)
    : coordinator_(coordinator), mainExecutor_(mainExecutor) {}

OnboardingTrial::~OnboardingTrial() {
  endSession();
}

bool OnboardingTrial::isUnderWay() const {
  return deadline_ != nullptr;
}

void OnboardingTrial::start() {
  if (isUnderWay()) return;
  startedAt_ = coordinator_.clock().now();
  hasSession_ = true;
  if (!worker_) worker_ = std::make_unique<SerialQueue>("com.kestrel.onboarding");
  evaluations_ = coordinator_.observeEvaluations([this] { look(); });
  deadline_ = mainExecutor_.after(kPatienceSeconds, [this] { giveUp(); });
  // Whoever hears of it may ask whether it is under way.
  report_.set({Step::sending, "", {}});
  worker_->post([this, alive = std::weak_ptr(alive_), path = coordinator_.directories().hookSocket().string(),
                 bytes = record(AgentState::working, startedAt_)] {
    mainExecutor_.post([this, alive, failure = send(path, bytes)] {
      if (!alive.expired()) onReply(failure);
    });
  });
}

void OnboardingTrial::giveUp() {
  const Step step = report_.get().step;
  endSession();
  if (step == Step::sending || step == Step::accepted) {
    report_.set({Step::notConfirmed, describeHold(coordinator_.hold().get()), {}});
  }
}

void OnboardingTrial::onReply(const std::optional<std::string>& failure) {
  if (report_.get().step != Step::sending) return;
  if (failure) {
    hasSession_ = false;
    endSession();
    return report_.set({Step::failed, *failure, {}});
  }
  report_.set({Step::accepted, "", {}});
  look();
}

void OnboardingTrial::look() {
  // The event itself may reach the table after its answer.
  const bool isListed = coordinator_.agentCoordinator().sessions()->contains(kSession);
  if (report_.get().step != Step::accepted || !isListed) return;
  const WakeDecision& decision = coordinator_.currentDecision().get();
  const HoldStatus& hold = coordinator_.hold().get();
  if (const auto* blocked = decision.asBlocked()) {
    report_.set({Step::blocked, std::string(rawValue(blocked->block)), {}});
  } else if (decision.isHolding() && hold.state == HoldState::inForce) {
    report_.set({Step::held, describeHold(hold), coordinator_.clock().now() - startedAt_});
  }
}

void OnboardingTrial::endSession() {
  evaluations_.reset();
  deadline_.reset();
  if (!std::exchange(hasSession_, false)) return;
  worker_->post([path = coordinator_.directories().hookSocket().string(),
                 bytes = record(AgentState::completed, coordinator_.clock().now())] {
    // Without an answer the session falls silent and ends later.
    (void)send(path, bytes);
  });
}

}  // namespace kestrel
