#include "KestrelPlatform/Linux/PowerHolds.h"

#include <algorithm>
#include <utility>

namespace kestrel {

PowerHolds::PowerHolds(Executor& executor, const Logger& logger,
                       std::function<void(const HoldFindings&)> publish)
    : context_{executor, logger, [this] { scheduleUpdate(); }},
      publish_(std::move(publish)),
      systemBus_(SdBus::Which::system, executor, logger),
      sessionBus_(SdBus::Which::session, executor, logger),
      loginManager_(systemBus_, context_.onChange, [this] { readBack(); }),
      sessionManager_(DesktopService::kSessionManager, sessionBus_, context_.onChange),
      powerManagement_(DesktopService::kPowerManagement, sessionBus_, context_.onChange),
      screenSaver_(DesktopService::kScreenSaver, sessionBus_, context_.onChange),
      plans_{HoldPlan{
                 .always = {{&loginManager_, HoldKind::idle}},
                 .preferred = {{&sessionManager_, HoldKind::desktop}, {&powerManagement_, HoldKind::desktop}},
                 .fallback = {&loginManager_, HoldKind::sleep}},
             HoldPlan{.always = {},
                      .preferred = {{&screenSaver_, HoldKind::display}},
                      .fallback = {&sessionManager_, HoldKind::display}}} {
  logPresence();
}

HoldFindings PowerHolds::findings() const {
  HoldFindings result;
  for (std::size_t type = 0; type < kAssertionTypes; ++type) {
    result.prospects[type] = {plans_[type].isReachable(), plans_[type].preview()};
  }
  for (const Entry& entry : entries_) result.evidence.emplace(entry.assertion.id, entry.holds->evidence());
  return result;
}

void PowerHolds::apply(const std::vector<WantedAssertion>& wanted) {
  std::vector<Entry> former = std::exchange(entries_, {});
  std::vector<const WantedAssertion*> added;
  for (const WantedAssertion& assertion : wanted) {
    const auto kept =
        std::ranges::find(former, assertion.id, [](const Entry& entry) { return entry.assertion.id; });
    if (kept == former.end()) {
      added.push_back(&assertion);
    } else {
      entries_.push_back(std::move(*kept));
      former.erase(kept);
    }
  }
  for (const WantedAssertion* assertion : added)
    entries_.push_back({*assertion, takeOver(former, *assertion)});
  update();
}

std::unique_ptr<PlannedHolds> PowerHolds::takeOver(std::vector<Entry>& former,
                                                   const WantedAssertion& wanted) {
  const auto match = std::ranges::find_if(former, [&](const Entry& entry) {
    return entry.holds && entry.assertion.type == wanted.type && entry.assertion.name == wanted.name;
  });
  if (match != former.end()) return std::move(match->holds);
  return std::make_unique<PlannedHolds>(plans_[static_cast<std::size_t>(wanted.type)], wanted.name, context_);
}

void PowerHolds::readBack() {
  for (const Entry& entry : entries_) entry.holds->readBack();
}

void PowerHolds::scheduleUpdate() {
  if (std::exchange(updateScheduled_, true)) return;
  context_.executor.post([this, alive = std::weak_ptr(alive_)] {
    if (alive.lock()) update();
  });
}

/// Updating one hold may call for another round, never for an endless number: it follows changes only.
void PowerHolds::update() {
  updateScheduled_ = false;
  logPresence();
  for (const Entry& entry : entries_) entry.holds->update();
  publish_(findings());
}

void PowerHolds::logPresence() {
  const auto presence = loginManager_.presence();
  if (presence == InhibitorService::Presence::unknown || presence == loggedPresence_) return;
  if (presence == InhibitorService::Presence::absent) {
    context_.logger.info("No login manager: {}; holds cannot be in force there", loginManager_.absence());
  } else if (loggedPresence_ == InhibitorService::Presence::absent) {
    context_.logger.info("The login manager is there now");
  }
  loggedPresence_ = presence;
}

}  // namespace kestrel
