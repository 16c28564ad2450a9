#pragma once

#include "KestrelCore/Policy/PolicyEvaluationContext.h"
#include "KestrelCore/Policy/WakeDecision.h"

namespace kestrel {

/// The one place that decides whether the machine is kept awake: a pure function of its context.
class WakePolicyEngine {
 public:
  [[nodiscard]] WakeDecision evaluate(const PolicyEvaluationContext& context) const;
};

}  // namespace kestrel
