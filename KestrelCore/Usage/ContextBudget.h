#pragma once

#include <cstdint>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// How full a model's context is. Counts are tokens, percentages 0 to 100.
class ContextBudget {
 public:
  /// Takes a window below 1 as 1 and a negative consumption as 0.
  ContextBudget(std::int64_t contextWindow, std::int64_t tokensConsumed);

  [[nodiscard]] std::int64_t contextWindow() const { return contextWindow_; }
  [[nodiscard]] std::int64_t tokensConsumed() const { return tokensConsumed_; }
  /// Never negative, although more than the window may be consumed.
  [[nodiscard]] std::int64_t tokensRemaining() const { return tokensRemaining_; }
  [[nodiscard]] double percentageRemaining() const { return percentageRemaining_; }
  [[nodiscard]] double percentageUsed() const { return percentageUsed_; }

  friend bool operator==(const ContextBudget&, const ContextBudget&) = default;

 private:
  std::int64_t contextWindow_;
  std::int64_t tokensConsumed_;
  std::int64_t tokensRemaining_;
  double percentageRemaining_;
  double percentageUsed_;
};

Json encode(const ContextBudget& budget);
/// All five fields have to be there; what follows from window and consumption is computed again. Throws
/// DecodingError.
ContextBudget decodeContextBudget(const Json& object);

}  // namespace kestrel
