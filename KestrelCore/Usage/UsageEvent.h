#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Support/Date.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// One observation of token usage, as a reader of an agent's records or a hook made it. What the source did
/// not tell is absent, never 0. Counts are tokens. (Braces let designated initialisers leave members out.)
struct UsageEvent {
  /// Unique; a new UUID where the source gives none.
  std::string id{};
  AgentType agentType = AgentType::custom;
  /// The agent's own session id.
  std::string sessionId{};
  /// The turn or message within the session.
  std::optional<std::string> turnId{};
  /// As the agent wrote it.
  std::optional<std::string> modelId{};
  std::optional<std::int64_t> inputTokens{};
  std::optional<std::int64_t> outputTokens{};
  /// Read from the model's cache.
  std::optional<std::int64_t> cachedTokens{};
  /// Written to the model's cache.
  std::optional<std::int64_t> cacheWriteTokens{};
  std::optional<std::int64_t> reasoningTokens{};
  /// Cached and cache-write tokens are never part of it.
  std::optional<std::int64_t> totalTokens{};
  /// Size of the model's context.
  std::optional<std::int64_t> contextWindow{};
  std::optional<double> costEstimateUSD{};
  /// 0 to 100.
  std::optional<double> quotaRemainingPercent{};
  /// When the usage happened.
  Date timestamp{};
  /// Which reader made it: "claude-project-log".
  std::string source{};

  /// What a reader calls last: sets an absent total to input + output + reasoning tokens, unless that sum is
  /// below 1 or does not fit.
  void deriveTotal();

  /// The total, else input + output + reasoning tokens; absent when that sum is below 1 or does not fit.
  [[nodiscard]] std::optional<std::int64_t> effectiveTotalTokens() const;
  /// The part of the context that the tokens fill, 0 to 1; absent without a window or without tokens.
  [[nodiscard]] std::optional<double> contextUtilization() const;
  /// The same for the same observation, however often it is read: agent, session and turn, joined by "_";
  /// without a turn, the time (seconds since 1970, shortest form that reads back equal) and the total.
  [[nodiscard]] std::string deduplicationKey() const;

  friend bool operator==(const UsageEvent&, const UsageEvent&) = default;
};

/// Keys are the field names, dates seconds since 2001, absent fields left out.
Json encode(const UsageEvent& event);
/// Throws DecodingError.
UsageEvent decodeUsageEvent(const Json& object);

}  // namespace kestrel
