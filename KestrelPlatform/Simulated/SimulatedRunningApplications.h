#pragma once

#include <utility>

#include "KestrelCore/Platform/RunningApplications.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// Scripted applications, at first none; the processes are left out of account. Scripted from any thread.
class SimulatedRunningApplications final : public RunningApplications {
 public:
  [[nodiscard]] std::vector<RunningApplication> list(const std::vector<ProcessRow>&) override {
    const LockGuard guard(lock_);
    return applications_;
  }

  void set(std::vector<RunningApplication> applications) {
    const LockGuard guard(lock_);
    applications_ = std::move(applications);
  }

 private:
  Mutex lock_{LockRank::leaf};
  std::vector<RunningApplication> applications_ KESTREL_GUARDED_BY(lock_);
};

}  // namespace kestrel
