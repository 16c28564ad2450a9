#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "KestrelCore/Support/JsonForward.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// Totals of one agent's events. Counts are tokens.
struct AgentUsageSummary {
  std::int64_t totalTokens = 0;
  std::int64_t inputTokens = 0;
  std::int64_t outputTokens = 0;
  std::int64_t cachedTokens = 0;
  std::int64_t cacheWriteTokens = 0;
  std::int64_t reasoningTokens = 0;
  /// Absent until an event carries a cost.
  std::optional<double> estimatedCostUSD;
  /// Not counted per agent: it stays 0, and who needs it counts session records.
  std::int64_t sessionCount = 0;
  std::int64_t turnCount = 0;

  friend bool operator==(const AgentUsageSummary&, const AgentUsageSummary&) = default;
};

/// Totals over a set of events, overall and by agent. Counts are tokens.
struct UsageSummary {
  std::int64_t totalTokens = 0;
  std::int64_t inputTokens = 0;
  std::int64_t outputTokens = 0;
  std::int64_t cachedTokens = 0;
  std::int64_t cacheWriteTokens = 0;
  std::int64_t reasoningTokens = 0;
  /// Absent until an event carries a cost.
  std::optional<double> estimatedCostUSD;
  /// Distinct sessions.
  std::int64_t sessionCount = 0;
  /// Events.
  std::int64_t turnCount = 0;
  /// By the agent's raw value.
  std::map<std::string, AgentUsageSummary> byAgent;

  friend bool operator==(const UsageSummary&, const UsageSummary&) = default;
};

/// Keys are the field names; an absent cost is left out.
Json encode(const UsageSummary& summary);
/// Throws DecodingError.
UsageSummary decodeUsageSummary(const Json& object);

/// The one short form of token counts: 950, 12k, 1000k, 2.5M, 3M.
std::string formatTokenCompact(std::int64_t tokens);

}  // namespace kestrel
