#include "KestrelPlatform/Linux/HoldPlan.h"

#include <algorithm>
#include <utility>

namespace kestrel {
namespace {

using Presence = InhibitorService::Presence;

bool isAbsent(const HoldTarget& target) {
  return target.service->presence() == Presence::absent;
}

/// Services that this machine has never had are not worth a word.
bool wasNeverThere(const InhibitorService& service) {
  return service.generation() == 0 && service.presence() != Presence::present;
}

HoldEvidence previewOf(const HoldTarget& target) {
  if (!isAbsent(target)) return {target.service->title(), target.kind, HoldEvidenceState::pending, {}};
  return {target.service->title(), target.kind, HoldEvidenceState::unavailable, target.service->absence()};
}

}  // namespace

bool HoldPlan::isReachable() const {
  return !std::ranges::all_of(always, isAbsent) || !std::ranges::all_of(preferred, isAbsent) ||
         !isAbsent(fallback);
}

std::vector<HoldEvidence> HoldPlan::preview() const {
  std::vector<HoldEvidence> result;
  for (const HoldTarget& target : always) result.push_back(previewOf(target));
  for (const HoldTarget& target : preferred) {
    if (!wasNeverThere(*target.service)) result.push_back(previewOf(target));
  }
  if (std::ranges::all_of(preferred, isAbsent)) result.push_back(previewOf(fallback));
  return result;
}

PlannedHolds::PlannedHolds(const HoldPlan& plan, std::string reason, const HoldContext& context)
    : plan_(plan), reason_(std::move(reason)), context_(context) {
  const auto make = [this](const HoldTarget& target) {
    return std::make_unique<ServiceHold>(*target.service, target.kind, reason_, context_);
  };
  std::ranges::transform(plan.always, std::back_inserter(always_), make);
  std::ranges::transform(plan.preferred, std::back_inserter(preferred_), make);
}

void PlannedHolds::update() {
  for (const auto& hold : always_) hold->update();
  for (const auto& hold : preferred_) hold->update();
  chooseFallback();
  if (fallback_) fallback_->update();
}

/// It is given back only when something better is in force, and taken only when that is not about to be.
void PlannedHolds::chooseFallback() {
  if (std::ranges::any_of(preferred_, [](const auto& hold) { return hold->isHeld(); })) {
    fallback_.reset();
  } else if (!fallback_ &&
             std::ranges::none_of(preferred_, [](const auto& hold) { return hold->isWaiting(); })) {
    fallback_ =
        std::make_unique<ServiceHold>(*plan_.fallback.service, plan_.fallback.kind, reason_, context_);
  }
}

void PlannedHolds::readBack() {
  for (const auto& hold : always_) hold->readBack();
  for (const auto& hold : preferred_) hold->readBack();
  if (fallback_) fallback_->readBack();
}

std::vector<HoldEvidence> PlannedHolds::evidence() const {
  std::vector<HoldEvidence> result;
  for (const auto& hold : always_) result.push_back(hold->evidence());
  for (const auto& hold : preferred_) {
    if (!wasNeverThere(hold->service())) result.push_back(hold->evidence());
  }
  if (fallback_) result.push_back(fallback_->evidence());
  return result;
}

}  // namespace kestrel
