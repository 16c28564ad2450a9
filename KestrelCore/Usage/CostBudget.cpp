#include "KestrelCore/Usage/CostBudget.h"

#include <fmt/format.h>

#include "KestrelCore/Support/Json.h"

namespace kestrel {

std::string CostBudget::formattedCost() const {
  const bool isTiny = amountUSD > 0 && amountUSD < 0.005;
  return (isTiny ? "<$0.01" : fmt::format("${:.2f}", amountUSD)) + (isEstimated ? " est." : "");
}

Json encode(const CostBudget& budget) {
  return {{"amountUSD", budget.amountUSD}, {"isEstimated", budget.isEstimated}};
}

CostBudget decodeCostBudget(const Json& object) {
  return {.amountUSD = requiredDouble(object, "amountUSD"),
          .isEstimated = requiredBool(object, "isEstimated")};
}

}  // namespace kestrel
