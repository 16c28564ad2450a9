#include "tests/core/UsageFixtures.h"

#include "KestrelCore/Usage/UsageSummary.h"
#include "KestrelCore/Usage/UsageSummaryBuilder.h"

namespace kestrel {
namespace {

TEST(UsageSummary, CompactCounts) {
  const std::pair<std::int64_t, const char*> rows[] = {
      {-5000, "-5000"},    {999, "999"},        {1000, "1k"},       {1499, "1k"},
      {1500, "2k"},        {999'499, "999k"},   {999'999, "1000k"}, {1'000'000, "1M"},
      {1'234'567, "1.2M"}, {1'999'999, "2.0M"}, {3'000'000, "3M"},  {INT64_MAX, "9223372036854.8M"}};
  for (const auto& [tokens, expected] : rows) EXPECT_EQ(formatTokenCompact(tokens), expected);
}

TEST(UsageSummary, AddsUpEventsOverallAndByAgent) {
  const UsageEvent events[] = {
      {.agentType = AgentType::claude,
       .sessionId = "a",
       .inputTokens = 10,
       .outputTokens = 2,
       .cachedTokens = 3},
      {.agentType = AgentType::claude, .sessionId = "a", .totalTokens = 50, .costEstimateUSD = 0.5},
      {.agentType = AgentType::codex, .sessionId = "a", .inputTokens = -7, .cacheWriteTokens = 4},
      {.agentType = AgentType::codex, .sessionId = "b", .reasoningTokens = 6, .costEstimateUSD = 0.25}};
  UsageSummaryBuilder builder;
  EXPECT_EQ(builder.summary(), UsageSummary());
  for (const UsageEvent& event : events) EXPECT_TRUE(builder.add(event));
  const std::string expected =
      R"({"byAgent":{"claude":{"cacheWriteTokens":0,"cachedTokens":3,"estimatedCostUSD":0.5,"inputTokens":10,)"
      R"("outputTokens":2,"reasoningTokens":0,"sessionCount":0,"totalTokens":62,"turnCount":2},)"
      R"("codex":{"cacheWriteTokens":4,"cachedTokens":0,"estimatedCostUSD":0.25,"inputTokens":-7,)"
      R"("outputTokens":0,"reasoningTokens":6,"sessionCount":0,"totalTokens":6,"turnCount":2}},)"
      R"("cacheWriteTokens":4,"cachedTokens":3,"estimatedCostUSD":0.75,"inputTokens":3,"outputTokens":2,)"
      R"("reasoningTokens":6,"sessionCount":2,"totalTokens":68,"turnCount":4})";
  EXPECT_EQ(dumpJson(encode(builder.summary())), expected);
  EXPECT_EQ(decodeUsageSummary(parseJson(expected)), builder.summary());
  EXPECT_EQ(optionalKeys(expected, decodeUsageSummary), "estimatedCostUSD ");
}

TEST(UsageSummary, RefusesWhatDoesNotFitAndStaysAsItWas) {
  UsageSummaryBuilder builder;
  ASSERT_TRUE(builder.add(UsageEvent{.cacheWriteTokens = INT64_MAX, .costEstimateUSD = 1e308}));
  const UsageSummary before = builder.summary();
  const UsageEvent refused[] = {{.sessionId = "b", .inputTokens = 5, .cacheWriteTokens = 1},
                                {.inputTokens = INT64_MAX, .outputTokens = 1},
                                {.costEstimateUSD = 1e308}};
  for (const UsageEvent& event : refused) EXPECT_FALSE(builder.add(event));
  EXPECT_EQ(builder.summary(), before);
  EXPECT_TRUE(builder.fits({.totalTokens = INT64_MAX}));
}

}  // namespace
}  // namespace kestrel
