#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// What one session used, folded from its events. Counts are tokens.
struct SessionUsageRecord {
  /// The agent's session id.
  std::string id;
  AgentType agentType = AgentType::custom;
  /// Of the session's first event.
  std::optional<std::string> modelId;
  /// Time of the first event that was recorded.
  Date startedAt;
  Date lastActiveAt;
  /// From `startedAt` to `lastActiveAt`, never negative.
  double durationSeconds = 0;
  std::int64_t totalTokens = 0;
  std::int64_t inputTokens = 0;
  std::int64_t outputTokens = 0;
  std::int64_t cachedTokens = 0;
  std::int64_t cacheWriteTokens = 0;
  std::int64_t reasoningTokens = 0;
  std::optional<double> estimatedCostUSD;
  /// As the latest event that told it.
  std::optional<std::int64_t> contextWindow;
  std::optional<double> quotaRemainingPercent;

  friend bool operator==(const SessionUsageRecord&, const SessionUsageRecord&) = default;
};

/// Keys are the field names, dates seconds since 2001, absent fields left out.
Json encode(const SessionUsageRecord& record);
/// Throws DecodingError.
SessionUsageRecord decodeSessionUsageRecord(const Json& object);

}  // namespace kestrel
