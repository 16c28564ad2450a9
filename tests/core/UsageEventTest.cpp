#include <tuple>

#include "tests/core/UsageFixtures.h"

#include "KestrelCore/Usage/SessionUsageRecord.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {
namespace {

constexpr Date kTime = Date::since1970(1731715200.5);

TEST(UsageEvent, TotalsAndUtilization) {
  const std::tuple<UsageEvent, std::optional<std::int64_t>, std::optional<double>> rows[] = {
      {{.inputTokens = 1, .outputTokens = 2, .reasoningTokens = 3, .contextWindow = 100}, 6, 0.06},
      {{.inputTokens = 1, .totalTokens = 7, .contextWindow = 100}, 7, 0.07},
      {{.inputTokens = 1, .contextWindow = 0}, 1, {}},
      {{.cachedTokens = 9, .cacheWriteTokens = 9, .contextWindow = 100}, {}, {}},
      {{.inputTokens = 5, .outputTokens = -5, .contextWindow = 100}, {}, {}},
      {{.inputTokens = 5, .totalTokens = 0, .contextWindow = 100}, 0, {}},
      {{.totalTokens = 250, .contextWindow = 100}, 250, 1.0},
      {{.inputTokens = INT64_MAX, .outputTokens = 1, .contextWindow = 100}, {}, {}},
  };
  for (auto [event, total, utilization] : rows) {
    EXPECT_EQ(event.effectiveTotalTokens(), total);
    EXPECT_EQ(event.contextUtilization(), utilization);
  }
}

TEST(UsageEvent, DeduplicationKeys) {
  const std::pair<UsageEvent, const char*> rows[] = {
      {{.agentType = AgentType::codex, .sessionId = "s", .turnId = "t1", .timestamp = kTime}, "codex_s_t1"},
      {{.sessionId = "s", .totalTokens = -7, .timestamp = kTime}, "custom_s_1731715200.5_-7"},
      {{.sessionId = "s", .turnId = "", .timestamp = kTime + 0.5}, "custom_s_1731715201.0_0"},
      {{.timestamp = Date::since1970(1e22)}, "custom__1e+22_0"},
  };
  for (const auto& [event, expected] : rows) EXPECT_EQ(event.deduplicationKey(), expected);
}

TEST(UsageEvent, IsWrittenWithItsFieldNames) {
  const std::string full =
      R"({"agentType":"codex","cacheWriteTokens":4,"cachedTokens":3,"contextWindow":258400,)"
      R"("costEstimateUSD":0.25,"id":"E1","inputTokens":1,"modelId":"m","outputTokens":2,)"
      R"("quotaRemainingPercent":12.5,"reasoningTokens":5,"sessionId":"s","source":"codex-session-rollout",)"
      R"("timestamp":753408000.5,"totalTokens":8,"turnId":"t"})";
  const std::string bare = R"({"agentType":"custom","id":"","sessionId":"","source":"","timestamp":-1.0})";
  for (const auto& text : {full, bare}) EXPECT_EQ(dumpJson(encode(decodeUsageEvent(parseJson(text)))), text);
  EXPECT_EQ(optionalKeys(full, decodeUsageEvent),
            "cacheWriteTokens cachedTokens contextWindow costEstimateUSD inputTokens modelId outputTokens "
            "quotaRemainingPercent reasoningTokens totalTokens turnId ");
}

TEST(SessionUsageRecord, IsWrittenWithItsFieldNames) {
  const std::string full =
      R"({"agentType":"claude","cacheWriteTokens":4,"cachedTokens":3,"contextWindow":200000,)"
      R"("durationSeconds":9.5,"estimatedCostUSD":1.5,"id":"s","inputTokens":1,"lastActiveAt":20.5,)"
      R"("modelId":"m","outputTokens":2,"quotaRemainingPercent":50.0,"reasoningTokens":5,"startedAt":11.0,)"
      R"("totalTokens":8})";
  EXPECT_EQ(dumpJson(encode(decodeSessionUsageRecord(parseJson(full)))), full);
  EXPECT_EQ(optionalKeys(full, decodeSessionUsageRecord),
            "contextWindow estimatedCostUSD modelId quotaRemainingPercent ");
}

}  // namespace
}  // namespace kestrel
