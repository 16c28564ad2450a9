#include "KestrelCore/Usage/UsageMetrics.h"

#include "KestrelCore/Support/Json.h"

namespace kestrel {

std::optional<std::int64_t> UsageMetrics::effectiveTotalTokens() const {
  if (totalTokens) return totalTokens;
  std::int64_t sum = inputTokens.value_or(0);
  if (__builtin_add_overflow(sum, outputTokens.value_or(0), &sum) ||
      __builtin_add_overflow(sum, reasoningTokens.value_or(0), &sum)) {
    return std::nullopt;
  }
  return sum < 1 ? std::nullopt : std::optional(sum);
}

Json encode(const UsageMetrics& metrics) {
  Json object = {{"recordedAt", metrics.recordedAt.secondsSinceReferenceDate()}};
  setIfPresent(object, "inputTokens", metrics.inputTokens);
  setIfPresent(object, "outputTokens", metrics.outputTokens);
  setIfPresent(object, "cachedTokens", metrics.cachedTokens);
  setIfPresent(object, "cacheWriteTokens", metrics.cacheWriteTokens);
  setIfPresent(object, "reasoningTokens", metrics.reasoningTokens);
  setIfPresent(object, "totalTokens", metrics.totalTokens);
  setIfPresent(object, "contextWindow", metrics.contextWindow);
  setIfPresent(object, "sessionCostEstimateUSD", metrics.sessionCostEstimateUSD);
  return object;
}

UsageMetrics decodeUsageMetrics(const Json& object) {
  UsageMetrics metrics;
  metrics.inputTokens = optionalInteger(object, "inputTokens");
  metrics.outputTokens = optionalInteger(object, "outputTokens");
  metrics.cachedTokens = optionalInteger(object, "cachedTokens");
  metrics.cacheWriteTokens = optionalInteger(object, "cacheWriteTokens");
  metrics.reasoningTokens = optionalInteger(object, "reasoningTokens");
  metrics.totalTokens = optionalInteger(object, "totalTokens");
  metrics.contextWindow = optionalInteger(object, "contextWindow");
  metrics.sessionCostEstimateUSD = optionalDouble(object, "sessionCostEstimateUSD");
  metrics.recordedAt = requiredDate(object, "recordedAt");
  return metrics;
}

}  // namespace kestrel
