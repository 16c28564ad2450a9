#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Power/DeepSleepController.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// The main thread's side of the deep hold: asks for it as often as it is wanted but one exchange at a time,
/// gives it back, and knows what the helper last said. Main thread.
class DeepHoldSupervisor {
 public:
  /// The executor outlives this object.
  DeepHoldSupervisor(std::unique_ptr<DeepSleepControlling> controller, Executor& mainExecutor);

  /// Called after the helper's status changed. Set before anything is asked.
  void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }

  /// What the latest decision wants.
  void follow(bool isWanted);
  /// Once a second: asks for the helper's status when the last one is old.
  void tick(Date now);
  /// Gives the hold back; `done` is called when the helper was told, or could not be.
  void release(std::function<void()> done);

  /// As the helper last said; absent until it was asked for the first time.
  [[nodiscard]] const Published<std::optional<DeepSleepStatus>>& helperStatus() const {
    return helperStatus_;
  }
  /// What the helper's status means for the hold; empty while the deep hold is not wanted.
  [[nodiscard]] std::vector<HoldEvidence> evidence() const;

 private:
  void acquire();
  void onAcquired(bool granted);
  void refreshStatus();
  /// Brings an answer to the main thread, unless this object is gone by then.
  [[nodiscard]] std::function<void(std::function<void()>)> toMainThread();

  Executor& mainExecutor_;
  std::function<void()> onChange_ = [] {};
  Published<std::optional<DeepSleepStatus>> helperStatus_;
  bool isWanted_ = false;
  bool isAsking_ = false;
  bool isRefreshing_ = false;
  /// Whether another refresh was wanted during one, whose answer may be older than the reason for it.
  bool refreshAgain_ = false;
  /// Of the latest request; absent before its answer.
  std::optional<bool> granted_;
  std::optional<Date> refreshedAt_;
  /// Answers meant for a hold that has ended find this replaced.
  std::shared_ptr<int> episode_ = std::make_shared<int>();
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
  /// Last, so that no answer comes while the rest goes.
  const std::unique_ptr<DeepSleepControlling> controller_;
};

}  // namespace kestrel
