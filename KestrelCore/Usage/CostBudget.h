#pragma once

#include <string>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// What a session cost in US dollars.
struct CostBudget {
  double amountUSD = 0;
  /// From a price table, not from the provider's bill.
  bool isEstimated = false;

  /// "$0.25 est.", "<$0.01".
  [[nodiscard]] std::string formattedCost() const;

  friend bool operator==(const CostBudget&, const CostBudget&) = default;
};

Json encode(const CostBudget& budget);
/// Throws DecodingError.
CostBudget decodeCostBudget(const Json& object);

}  // namespace kestrel
