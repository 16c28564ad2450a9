#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KestrelCore/Platform/PowerAssertions.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// Grants every assertion, unless scripted otherwise, and records what was asked. Safe from any thread.
class SimulatedPowerAssertions final : public PowerAssertions {
 public:
  enum class Operation { create, release };
  struct Call {
    Operation operation = Operation::create;
    /// 0 when creating failed.
    PowerAssertionID id = 0;
    /// As it was created with; empty for the release of an unknown id.
    std::string type;
    std::uint32_t level = 0;
    std::string name;

    friend bool operator==(const Call&, const Call&) = default;
  };

  [[nodiscard]] Creation create(std::string_view type, std::uint32_t level, std::string_view name) override;
  void release(PowerAssertionID id) override;
  [[nodiscard]] std::vector<HoldEvidence> evidence() override;
  [[nodiscard]] std::vector<HoldEvidence> prospects() override;
  void setOnEvidenceChanged(std::function<void()> callback) override;

  /// The following creations of a type fail with this code; 0 lets them succeed.
  void setCreateCode(std::string_view type, std::int32_t code);
  /// What `evidence()` answers from now on; absent: each assertion in force shows as held.
  void setEvidence(std::optional<std::vector<HoldEvidence>> evidence);
  /// Calls back on this thread, which plays the main one.
  void fireEvidenceChanged();

  [[nodiscard]] std::vector<Call> calls() const;
  /// The creations behind the assertions that are in force, oldest first.
  [[nodiscard]] std::vector<Call> inForce() const;

 private:
  mutable Mutex mutex_{LockRank::leaf};
  PowerAssertionID nextId_ KESTREL_GUARDED_BY(mutex_) = 1;
  std::vector<Call> calls_ KESTREL_GUARDED_BY(mutex_);
  std::map<PowerAssertionID, Call> inForce_ KESTREL_GUARDED_BY(mutex_);
  std::map<std::string, std::int32_t, std::less<>> createCodes_ KESTREL_GUARDED_BY(mutex_);
  std::optional<std::vector<HoldEvidence>> evidence_ KESTREL_GUARDED_BY(mutex_);
  std::function<void()> onEvidenceChanged_ KESTREL_GUARDED_BY(mutex_);
};

}  // namespace kestrel
