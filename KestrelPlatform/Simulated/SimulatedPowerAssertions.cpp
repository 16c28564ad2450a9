#include "KestrelPlatform/Simulated/SimulatedPowerAssertions.h"

#include <utility>

namespace kestrel {

PowerAssertions::Creation SimulatedPowerAssertions::create(std::string_view type, std::uint32_t level,
                                                           std::string_view name) {
  const LockGuard lock(mutex_);
  Call call{Operation::create, 0, std::string(type), level, std::string(name)};
  const auto code = createCodes_.find(type);
  if (code != createCodes_.end() && code->second != 0) {
    calls_.push_back(std::move(call));
    return {code->second, 0};
  }
  call.id = nextId_++;
  calls_.push_back(call);
  inForce_.emplace(call.id, call);
  return {0, call.id};
}

void SimulatedPowerAssertions::release(PowerAssertionID id) {
  const LockGuard lock(mutex_);
  Call call{.operation = Operation::release, .id = id, .type = {}, .level = 0, .name = {}};
  if (const auto held = inForce_.extract(id)) {
    call = held.mapped();
    call.operation = Operation::release;
  }
  calls_.push_back(std::move(call));
}

std::vector<HoldEvidence> SimulatedPowerAssertions::evidence() {
  const LockGuard lock(mutex_);
  if (evidence_) return *evidence_;
  std::vector<HoldEvidence> result;
  for (const auto& [id, call] : inForce_) {
    const HoldKind kind = call.type == kPreventIdleDisplaySleep ? HoldKind::display : HoldKind::idle;
    result.push_back({"simulation", kind, HoldEvidenceState::held, ""});
  }
  return result;
}

std::vector<HoldEvidence> SimulatedPowerAssertions::prospects() {
  return {{"simulated service", HoldKind::idle, HoldEvidenceState::pending, {}}};
}

void SimulatedPowerAssertions::setOnEvidenceChanged(std::function<void()> callback) {
  const LockGuard lock(mutex_);
  onEvidenceChanged_ = std::move(callback);
}

void SimulatedPowerAssertions::setCreateCode(std::string_view type, std::int32_t code) {
  const LockGuard lock(mutex_);
  createCodes_.insert_or_assign(std::string(type), code);
}

void SimulatedPowerAssertions::setEvidence(std::optional<std::vector<HoldEvidence>> evidence) {
  const LockGuard lock(mutex_);
  evidence_ = std::move(evidence);
}

void SimulatedPowerAssertions::fireEvidenceChanged() {
  LockGuard lock(mutex_);
  const std::function<void()> callback = onEvidenceChanged_;
  lock.unlock();
  if (callback) callback();
}

std::vector<SimulatedPowerAssertions::Call> SimulatedPowerAssertions::calls() const {
  const LockGuard lock(mutex_);
  return calls_;
}

std::vector<SimulatedPowerAssertions::Call> SimulatedPowerAssertions::inForce() const {
  const LockGuard lock(mutex_);
  std::vector<Call> result;
  for (const auto& [id, call] : inForce_) result.push_back(call);
  return result;
}

}  // namespace kestrel
