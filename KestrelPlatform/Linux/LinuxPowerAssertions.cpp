#include "KestrelPlatform/Linux/LinuxPowerAssertions.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelPlatform/Linux/BusText.h"
#include "KestrelPlatform/Linux/PowerHolds.h"

namespace kestrel {
namespace {

constexpr double kReadBackSeconds = 10;

std::optional<AssertionType> assertionType(std::string_view type) {
  if (type == PowerAssertions::kPreventIdleSystemSleep) return AssertionType::systemSleep;
  if (type == PowerAssertions::kPreventIdleDisplaySleep) return AssertionType::displaySleep;
  return std::nullopt;
}

/// What is wanted, and what is known of it; the holds themselves belong to the main thread.
class LinuxPowerAssertions final : public PowerAssertions {
 public:
  LinuxPowerAssertions(Executor& mainExecutor, std::shared_ptr<LogSink> sink,
                       std::shared_ptr<const Clock> clock)
      : executor_(mainExecutor),
        clock_(std::move(clock)),
        holds_(std::make_shared<PowerHolds>(mainExecutor, Logger(std::move(sink), "power"),
                                            [this](const HoldFindings& findings) { publish(findings); })),
        weakHolds_(holds_) {
    publish(holds_->findings());
  }

  Creation create(std::string_view type, std::uint32_t level, std::string_view name) override;
  void release(PowerAssertionID id) override;
  std::vector<HoldEvidence> evidence() override;
  std::vector<HoldEvidence> prospects() override;
  void setOnEvidenceChanged(std::function<void()> callback) override;

 private:
  struct Assertion {
    WantedAssertion wanted;
    std::vector<HoldEvidence> evidence;
  };

  std::vector<HoldEvidence> collect() const KESTREL_REQUIRES(mutex_);
  bool isReadingDue(Date now) KESTREL_REQUIRES(mutex_);
  void requestApply();
  void publish(const HoldFindings& findings);

  Executor& executor_;
  const std::shared_ptr<const Clock> clock_;
  Mutex mutex_{LockRank::leaf};
  PowerAssertionID lastId_ KESTREL_GUARDED_BY(mutex_) = 0;
  std::vector<Assertion> assertions_ KESTREL_GUARDED_BY(mutex_);
  std::array<HoldFindings::Prospect, kAssertionTypes> prospects_ KESTREL_GUARDED_BY(mutex_);
  /// Why the last creation of a type failed, until the next one.
  std::array<std::vector<HoldEvidence>, kAssertionTypes> failures_ KESTREL_GUARDED_BY(mutex_);
  std::optional<Date> lastReading_ KESTREL_GUARDED_BY(mutex_);
  std::function<void()> callback_ KESTREL_GUARDED_BY(mutex_);
  const std::shared_ptr<PowerHolds> holds_;
  const std::weak_ptr<PowerHolds> weakHolds_;
};

PowerAssertions::Creation LinuxPowerAssertions::create(std::string_view type, std::uint32_t level,
                                                       std::string_view name) {
  const auto known = assertionType(type);
  if (!known || level != kLevelOn) return {EINVAL, 0};
  const auto index = static_cast<std::size_t>(*known);
  std::string shownName = busText(name);
  LockGuard lock(mutex_);
  failures_[index].clear();
  if (!prospects_[index].reachable) {
    failures_[index] = prospects_[index].preview;
    return {EHOSTUNREACH, 0};
  }
  if (++lastId_ == 0) ++lastId_;
  const PowerAssertionID id = lastId_;
  assertions_.push_back({{id, *known, std::move(shownName)}, prospects_[index].preview});
  lock.unlock();
  requestApply();
  return {0, id};
}

void LinuxPowerAssertions::release(PowerAssertionID id) {
  LockGuard lock(mutex_);
  const auto removed =
      std::erase_if(assertions_, [id](const Assertion& each) { return each.wanted.id == id; });
  lock.unlock();
  if (removed > 0) requestApply();
}

std::vector<HoldEvidence> LinuxPowerAssertions::evidence() {
  const Date now = clock_->now();
  LockGuard lock(mutex_);
  const bool due = isReadingDue(now);
  std::vector<HoldEvidence> result = collect();
  lock.unlock();
  if (due) {
    executor_.post([weak = weakHolds_] {
      if (const auto holds = weak.lock()) holds->readBack();
    });
  }
  return result;
}

std::vector<HoldEvidence> LinuxPowerAssertions::prospects() {
  const LockGuard lock(mutex_);
  return prospects_[static_cast<std::size_t>(AssertionType::systemSleep)].preview;
}

void LinuxPowerAssertions::setOnEvidenceChanged(std::function<void()> callback) {
  const LockGuard lock(mutex_);
  callback_ = std::move(callback);
}

std::vector<HoldEvidence> LinuxPowerAssertions::collect() const {
  std::vector<HoldEvidence> result;
  for (const Assertion& each : assertions_)
    result.insert(result.end(), each.evidence.begin(), each.evidence.end());
  for (const auto& failure : failures_) result.insert(result.end(), failure.begin(), failure.end());
  return result;
}

/// A clock that was set back makes a reading due.
bool LinuxPowerAssertions::isReadingDue(Date now) {
  if (assertions_.empty()) return false;
  if (lastReading_ && now >= *lastReading_ && now - *lastReading_ < kReadBackSeconds) return false;
  lastReading_ = now;
  return true;
}

/// Takes what is wanted when the task runs, so that a release and a creation in one turn are seen together.
void LinuxPowerAssertions::requestApply() {
  executor_.post([this, weak = weakHolds_] {
    const auto holds = weak.lock();
    if (!holds) return;
    std::vector<WantedAssertion> wanted;
    LockGuard lock(mutex_);
    for (const Assertion& each : assertions_) wanted.push_back(each.wanted);
    lock.unlock();
    holds->apply(wanted);
  });
}

void LinuxPowerAssertions::publish(const HoldFindings& findings) {
  LockGuard lock(mutex_);
  const std::vector<HoldEvidence> before = collect();
  for (Assertion& each : assertions_) {
    const auto found = findings.evidence.find(each.wanted.id);
    if (found != findings.evidence.end()) each.evidence = found->second;
  }
  prospects_ = findings.prospects;
  for (std::size_t type = 0; type < kAssertionTypes; ++type) {
    if (failures_[type].empty()) continue;
    if (!prospects_[type].reachable) failures_[type] = prospects_[type].preview;
    for (HoldEvidence& entry : failures_[type]) {
      if (prospects_[type].reachable) entry.detail = "it is there now and was not asked yet";
    }
  }
  const std::function<void()> callback = before == collect() ? nullptr : callback_;
  lock.unlock();
  if (callback) callback();
}

}  // namespace

std::unique_ptr<PowerAssertions> makeLinuxPowerAssertions(Executor& mainExecutor,
                                                          std::shared_ptr<LogSink> sink,
                                                          std::shared_ptr<const Clock> clock) {
  return std::make_unique<LinuxPowerAssertions>(mainExecutor, std::move(sink), std::move(clock));
}

}  // namespace kestrel
