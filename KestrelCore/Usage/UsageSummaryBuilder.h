#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Usage/UsageEvent.h"
#include "KestrelCore/Usage/UsageSummary.h"

namespace kestrel {

/// Adds events up to a UsageSummary, one at a time and in any number of steps. Not thread-safe.
class UsageSummaryBuilder {
 public:
  /// What one event adds. Absent counts are 0, and the total is already the one that counts.
  struct Contribution {
    AgentType agentType = AgentType::custom;
    /// Needed only during the call.
    std::string_view sessionId{};
    std::int64_t totalTokens = 0;
    std::int64_t inputTokens = 0;
    std::int64_t outputTokens = 0;
    std::int64_t cachedTokens = 0;
    std::int64_t cacheWriteTokens = 0;
    std::int64_t reasoningTokens = 0;
    std::optional<double> costEstimateUSD{};

    /// Borrows the event's session id. Absent when the event names no total and its counts have a sum that
    /// does not fit.
    static std::optional<Contribution> of(const UsageEvent& event);
  };

  /// False, and nothing is changed, when a sum would not fit any more (a cost that is not finite included).
  [[nodiscard]] bool add(const Contribution& contribution);
  [[nodiscard]] bool add(const UsageEvent& event);
  /// Whether `add` would succeed now.
  [[nodiscard]] bool fits(const Contribution& contribution) const;

  /// Costs no more than the number of agents.
  [[nodiscard]] UsageSummary summary() const;

 private:
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  static constexpr std::size_t kAgentCount = RawValues<AgentType>::table.size();

  AgentUsageSummary totals_;
  std::array<AgentUsageSummary, kAgentCount> agents_;
  std::unordered_set<std::string, TextHash, std::equal_to<>> sessionIds_;
};

}  // namespace kestrel
