#include "KestrelCore/Usage/ContextBudget.h"

#include <algorithm>

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

double percentage(std::int64_t part, std::int64_t whole) {
  return std::clamp(static_cast<double>(part) / static_cast<double>(whole) * 100, 0.0, 100.0);
}

}  // namespace

ContextBudget::ContextBudget(std::int64_t contextWindow, std::int64_t tokensConsumed)
    : contextWindow_(std::max<std::int64_t>(contextWindow, 1)),
      tokensConsumed_(std::max<std::int64_t>(tokensConsumed, 0)),
      tokensRemaining_(std::max<std::int64_t>(contextWindow_ - tokensConsumed_, 0)),
      percentageRemaining_(percentage(tokensRemaining_, contextWindow_)),
      percentageUsed_(percentage(tokensConsumed_, contextWindow_)) {}

Json encode(const ContextBudget& budget) {
  return {{"contextWindow", budget.contextWindow()},
          {"tokensConsumed", budget.tokensConsumed()},
          {"tokensRemaining", budget.tokensRemaining()},
          {"percentageRemaining", budget.percentageRemaining()},
          {"percentageUsed", budget.percentageUsed()}};
}

ContextBudget decodeContextBudget(const Json& object) {
  (void)requiredInteger(object, "tokensRemaining");
  (void)requiredDouble(object, "percentageRemaining");
  (void)requiredDouble(object, "percentageUsed");
  return {requiredInteger(object, "contextWindow"), requiredInteger(object, "tokensConsumed")};
}

}  // namespace kestrel
