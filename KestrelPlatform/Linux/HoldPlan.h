#pragma once

#include <memory>
#include <string>
#include <vector>

#include "KestrelPlatform/Linux/ServiceHold.h"

namespace kestrel {

struct HoldTarget {
  InhibitorService* service = nullptr;
  HoldKind kind = HoldKind::idle;
};

/// What one type of assertion takes: everything in `always`, what there is of `preferred`, and `fallback` as
/// long as nothing preferred is in force.
struct HoldPlan {
  std::vector<HoldTarget> always;
  std::vector<HoldTarget> preferred;
  HoldTarget fallback;

  /// Whether any service answers, or may turn out to.
  [[nodiscard]] bool isReachable() const;
  /// The evidence of an assertion that would be made now.
  [[nodiscard]] std::vector<HoldEvidence> preview() const;
};

/// The holds behind one assertion. Destroying it gives them all back. Main thread only.
class PlannedHolds {
 public:
  PlannedHolds(const HoldPlan& plan, std::string reason, const HoldContext& context);

  /// Follows the services' presence and what they granted.
  void update();
  void readBack();
  [[nodiscard]] std::vector<HoldEvidence> evidence() const;

 private:
  void chooseFallback();

  const HoldPlan& plan_;
  const std::string reason_;
  const HoldContext& context_;
  std::vector<std::unique_ptr<ServiceHold>> always_;
  std::vector<std::unique_ptr<ServiceHold>> preferred_;
  std::unique_ptr<ServiceHold> fallback_;
};

}  // namespace kestrel
