#pragma once

#include <cstdint>
#include <optional>

#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// Token counts of one turn or session as an agent reported them; what it did not report is absent, never 0.
struct UsageMetrics {
  std::optional<std::int64_t> inputTokens;
  std::optional<std::int64_t> outputTokens;
  std::optional<std::int64_t> cachedTokens;
  std::optional<std::int64_t> cacheWriteTokens;
  std::optional<std::int64_t> reasoningTokens;
  std::optional<std::int64_t> totalTokens;
  /// Size of the model's context, in tokens.
  std::optional<std::int64_t> contextWindow;
  std::optional<double> sessionCostEstimateUSD;
  Date recordedAt;

  /// The reported total, else input + output + reasoning; absent when that sum is below 1 or does not
  /// fit. Cached and cache-write tokens are never part of it.
  [[nodiscard]] std::optional<std::int64_t> effectiveTotalTokens() const;

  friend bool operator==(const UsageMetrics&, const UsageMetrics&) = default;
};

Json encode(const UsageMetrics& metrics);

/// Throws DecodingError.
UsageMetrics decodeUsageMetrics(const Json& object);

}  // namespace kestrel
