#include "KestrelCore/Power/IdleWakeAssertionController.h"

#include <utility>

namespace kestrel {

IdleWakeAssertionController::IdleWakeAssertionController(PowerAssertions& assertions,
                                                         std::shared_ptr<LogSink> sink)
    : assertions_(assertions), logger_(std::move(sink), "power") {}

IdleWakeAssertionController::~IdleWakeAssertionController() {
  release();
}

bool IdleWakeAssertionController::isActive() const {
  const LockGuard guard(lock_);
  return systemAssertionID_ != 0;
}

void IdleWakeAssertionController::acquire(const std::string& reason, bool preventDisplaySleep) {
  const LockGuard guard(lock_);
  if (systemAssertionID_ != 0 && (displayAssertionID_ != 0) == preventDisplaySleep) return;
  releaseAll();
  const std::string name = "Kestrel: " + reason;
  const auto system =
      assertions_.create(PowerAssertions::kPreventIdleSystemSleep, PowerAssertions::kLevelOn, name);
  if (system.code != 0) {
    logger_.error("Failed to acquire PreventUserIdleSystemSleep assertion: {}", system.code);
    return;
  }
  systemAssertionID_ = system.id;
  logger_.info("Acquired PreventUserIdleSystemSleep assertion ID: {} reason: {}", system.id, reason);
  if (!preventDisplaySleep) return;
  const auto display =
      assertions_.create(PowerAssertions::kPreventIdleDisplaySleep, PowerAssertions::kLevelOn, name);
  if (display.code != 0) {
    logger_.error("Failed to acquire PreventUserIdleDisplaySleep assertion: {}", display.code);
    return;
  }
  displayAssertionID_ = display.id;
  logger_.info("Acquired PreventUserIdleDisplaySleep assertion ID: {}", display.id);
}

void IdleWakeAssertionController::release() {
  const LockGuard guard(lock_);
  releaseAll();
}

std::vector<HoldEvidence> IdleWakeAssertionController::evidence() {
  return assertions_.evidence();
}

void IdleWakeAssertionController::releaseAll() {
  releaseOne(systemAssertionID_, PowerAssertions::kPreventIdleSystemSleep);
  releaseOne(displayAssertionID_, PowerAssertions::kPreventIdleDisplaySleep);
}

void IdleWakeAssertionController::releaseOne(PowerAssertionID& id, std::string_view type) {
  if (id == 0) return;
  assertions_.release(id);
  logger_.info("Released {} assertion ID: {}", type, id);
  id = 0;
}

}  // namespace kestrel
