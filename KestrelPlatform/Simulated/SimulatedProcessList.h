#pragma once

#include <utility>

#include "KestrelCore/Platform/ProcessList.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// A scripted process list, at first without a listing. Scripted from any thread.
class SimulatedProcessList final : public ProcessList {
 public:
  [[nodiscard]] std::optional<std::vector<ProcessRow>> rows() override {
    const LockGuard guard(lock_);
    return rows_;
  }
  [[nodiscard]] std::optional<std::string> sourceName() const override {
    const LockGuard guard(lock_);
    return rows_ ? std::optional<std::string>("simulation") : std::nullopt;
  }

  void set(std::optional<std::vector<ProcessRow>> rows) {
    const LockGuard guard(lock_);
    rows_ = std::move(rows);
  }

 private:
  mutable Mutex lock_{LockRank::leaf};
  std::optional<std::vector<ProcessRow>> rows_ KESTREL_GUARDED_BY(lock_);
};

}  // namespace kestrel
