#include "KestrelCore/Usage/LowBudgetThreshold.h"

#include <fmt/format.h>

#include "KestrelCore/Support/AsciiCase.h"
#include "KestrelCore/Usage/WholePercent.h"

namespace kestrel {
namespace {

std::optional<LowBudgetLevel> levelOf(double percentage) {
  if (percentage <= 5) return LowBudgetLevel::exhausted;
  if (percentage <= 10) return LowBudgetLevel::critical;
  if (percentage <= 20) return LowBudgetLevel::warning;
  return std::nullopt;
}

std::optional<LowBudgetAlert> alertFor(LowBudgetMetricType type, std::optional<double> percentage) {
  const auto level = percentage ? levelOf(*percentage) : std::nullopt;
  if (!level) return std::nullopt;
  return LowBudgetAlert{.level = *level,
                        .metricType = type,
                        .percentageRemaining = *percentage,
                        .message = fmt::format("{} is {} ({}% remaining)", displayText(type),
                                               lowerCased(displayWord(*level)), wholePercent(*percentage))};
}

}  // namespace

std::optional<LowBudgetAlert> LowBudgetThreshold::evaluate(std::optional<double> contextRemainingPercent,
                                                           std::optional<double> quotaRemainingPercent) {
  auto context = alertFor(LowBudgetMetricType::context, contextRemainingPercent);
  auto quota = alertFor(LowBudgetMetricType::quota, quotaRemainingPercent);
  if (context && (!quota || context->level >= quota->level)) return context;
  return quota;
}

}  // namespace kestrel
