#pragma once

#include <optional>

#include "KestrelCore/Usage/LowBudgetAlert.h"

namespace kestrel {

/// When little is left: 20, 10 and 5 percent, each included.
struct LowBudgetThreshold {
  /// The more severe alert of the two, the context's when they are equal. Percentages are 0 to 100; an absent
  /// one gives none.
  [[nodiscard]] static std::optional<LowBudgetAlert> evaluate(std::optional<double> contextRemainingPercent,
                                                              std::optional<double> quotaRemainingPercent);
};

}  // namespace kestrel
