#pragma once

#include <compare>
#include <map>
#include <set>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Usage/LowBudgetAlert.h"

namespace kestrel {

/// What makes an alert another one.
struct AlertKey {
  AgentType agent = AgentType::custom;
  LowBudgetMetricType metric = LowBudgetMetricType::context;
  LowBudgetLevel level = LowBudgetLevel::warning;

  friend auto operator<=>(const AlertKey&, const AlertKey&) = default;
};

/// The alerts that a person put away. Each stays away until its level changes or it is over; nothing is kept
/// over a restart. Main thread.
class DismissedAlerts {
 public:
  void dismiss(const AlertKey& key) { keys_.insert(key); }
  [[nodiscard]] bool contains(const AlertKey& key) const { return keys_.contains(key); }
  /// Forgets what is not among the alerts of the moment.
  void update(const std::map<AgentType, LowBudgetAlert>& alerts);

 private:
  std::set<AlertKey> keys_;
};

}  // namespace kestrel
