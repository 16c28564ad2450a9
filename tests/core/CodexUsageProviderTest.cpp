#include "tests/core/UsageReaderFixture.h"

#include "KestrelCore/Usage/Providers/CodexUsageProvider.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string usage(int input, int output) {
  return fmt::format(R"({{"input_tokens":{},"cached_input_tokens":1,"output_tokens":{},)"
                     R"("reasoning_output_tokens":1,"total_tokens":{}}})",
                     input, output, input + output);
}

std::string limits(const std::string& used) {
  return R"("rate_limits":{"primary":{"used_percent":)" + used +
         R"(,"window_minutes":300,"resets_at":1795240000},"secondary":{"used_percent":99},"plan_type":"pro"})";
}

/// What an agent writes after a turn; `info` holds the members of that object.
std::string tokenCount(int ordinal, const std::string& info,
                       const std::string& rateLimits = R"("rate_limits":null)") {
  return fmt::format(R"({{"timestamp":"2026-11-21T03:00:00Z","ordinal":{},"type":"event_msg",)"
                     R"("payload":{{"type":"token_count","info":{{{}}},{}}}}})"
                     "\n",
                     ordinal, info, rateLimits);
}

std::string both(int lastInput, int totalInput) {
  return R"("last_token_usage":)" + usage(lastInput, 10) + R"(,"total_token_usage":)" + usage(totalInput, 20);
}

class CodexUsageProviderTest : public testing::Test {
 protected:
  void append(const std::string& text) { codex_.append(file_, text); }

  UsageReaderFixture codex_{makeCodexUsageReader};
  const std::filesystem::path file_ = ".codex/sessions/2026/11/21/rollout-t.jsonl";
};

TEST_F(CodexUsageProviderTest, ALineBecomesAnEventAndAReport) {
  append(R"({"type":"turn_context","payload":{"model":"o3-mini"}})"
         "\n" +
         tokenCount(7, both(1000, 5000) + R"(,"model_context_window":10000)", limits("30.5")));
  const auto events = codex_.poll();
  ASSERT_EQ(events.size(), 1);
  // 1000 × 1.1 + 10 × 4.4 + 1 × 4.4 millionths of a dollar.
  EXPECT_NEAR(events[0].costEstimateUSD.value_or(0), 0.0011484, 1e-12);
  // The time is that of reading.
  EXPECT_EQ(shown(events[0]),
            R"({"agentType":"codex","cachedTokens":1,"contextWindow":10000,"id":"","inputTokens":1000,)"
            R"("modelId":"o3-mini","outputTokens":10,"quotaRemainingPercent":69.5,"reasoningTokens":1,)"
            R"("sessionId":"rollout-t","source":"codex-session-rollout","timestamp":816924425.0,)"
            R"("totalTokens":1010,"turnId":"turn_7"})");
  const auto report = codex_.report();
  ASSERT_TRUE(report);
  EXPECT_EQ(report->actionableSummaryLine(),
            "9k context left · 90% remaining · Quota 70% left · <$0.01 est.");
  const AccountQuotaBudget quota{69.5, 30.5, 300, Date::since1970(1795240000), "pro"};
  EXPECT_EQ(report->quota, BudgetMetric<AccountQuotaBudget>::known(quota, 1, "codex-rate-limits"));
}

TEST_F(CodexUsageProviderTest, WhichUsageWindowModelAndTurnCount) {
  // Of each event the turn, model, total and window; or no event.
  const std::pair<std::string, std::string> rows[] = {
      {R"({"payload":{"info":{"total_token_usage":{"input_tokens":5,"output_tokens":2,"total_tokens":"7"}}}})",
       "turn_idx_0 gpt-5.6-terra 7 258400"},
      {R"({"payload":{"info":{"last_token_usage":{},"total_token_usage":7}}})", ""},
      {R"({"model":"mystery","payload":{"ordinal":-4,"info":{"last_token_usage":{"total_tokens":9}}}})",
       "turn_-4 mystery 9 258400"},
      {R"({"model":"mystery","payload":{"model":"gpt-4o"}})", ""},
      {R"({"ordinal":5.0,"payload":{"model":7,"info":{"last_token_usage":{"output_tokens":3}}}})",
       "turn_5 gpt-4o 3 128000"},
      {R"({"payload":{"info":{"last_token_usage":{"input_tokens":4},"model_context_window":-1}}})",
       "turn_idx_5 gpt-4o 4 128000"},
  };
  std::vector<std::string> found;
  std::vector<std::string> expected;
  for (const auto& [line, outcome] : rows) {
    append(line + "\n\n");
    for (const auto& event : codex_.poll()) {
      found.push_back(fmt::format("{} {} {} {}", *event.turnId, *event.modelId, *event.totalTokens,
                                  *event.contextWindow));
    }
    if (!outcome.empty()) expected.push_back(outcome);
  }
  EXPECT_EQ(found, expected);
  codex_.restart();
  EXPECT_THAT(turnIds(codex_.poll()), ElementsAre("turn_idx_0", "turn_-4", "turn_5", "turn_idx_5"));
  EXPECT_EQ(codex_.counted().turnCount, 4);
}

TEST_F(CodexUsageProviderTest, ARepeatedCountIsNoTurn) {
  std::string undated = tokenCount(5, both(100, 300));
  undated.erase(1, undated.find(R"("ordinal)") - 1);
  const std::pair<std::string, std::vector<std::string>> steps[] = {
      {tokenCount(1, both(100, 100)), {"turn_1"}},
      {tokenCount(2, both(100, 300)) + tokenCount(3, both(100, 300)), {"turn_2"}},
      {tokenCount(4, both(100, 300)), {}},
      {undated, {"turn_5"}},
      {tokenCount(6, R"("last_token_usage":{"total_tokens":0},"total_token_usage":)" + usage(300, 20)),
       {"turn_6"}},
      {tokenCount(8, both(50, 350)), {"turn_8"}},
  };
  for (const auto& [text, expected] : steps) {
    append(text);
    EXPECT_EQ(turnIds(codex_.poll()), expected);
  }
  // Another file has another total, and a file that begins anew none.
  codex_.append(".codex/sessions/2026/11/20/rollout-u.jsonl", tokenCount(1, both(50, 350)));
  EXPECT_THAT(turnIds(codex_.poll()), ElementsAre("turn_1"));
  std::filesystem::resize_file(codex_.home() / file_, 0);
  append(tokenCount(9, both(50, 350)));
  EXPECT_THAT(turnIds(codex_.poll()), ElementsAre("turn_9"));
}

TEST_F(CodexUsageProviderTest, TheQuotaDecidesTheAlertWhenItIsLower) {
  const std::tuple<std::string, std::string, double> rows[] = {
      {tokenCount(1, both(232'550, 1), limits("104")), "Account quota is exhausted (0% remaining)", 0},
      {tokenCount(2, both(232'550, 2), limits("90")), "Context window is critically low (10% remaining)", 10},
      {tokenCount(3, both(10, 3), limits("-5")), "none", 100},
      {tokenCount(4, R"("x":0)", limits("85")), "Account quota is low (15% remaining)", 15},
      {tokenCount(5, both(10, 5)), "none", -1},
      {tokenCount(6, both(10, 6), limits("\"85\"")), "none", -1},
  };
  for (const auto& [line, message, left] : rows) {
    append(line);
    (void)codex_.poll();
    const auto report = codex_.report();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->lowBudgetAlert ? report->lowBudgetAlert->message : "none", message);
    const auto* quota = report->quota.asKnown();
    EXPECT_EQ(quota == nullptr ? -1 : quota->value.percentageRemaining, left);
  }
  // Before the first turn there is only the quota.
  codex_.append(".codex/sessions/2026/11/22/rollout-v.jsonl", tokenCount(1, R"("x":0)", limits("40")));
  EXPECT_THAT(codex_.poll(), IsEmpty());
  EXPECT_EQ(codex_.report()->actionableSummaryLine(), "Quota 60% left");
}

}  // namespace
}  // namespace kestrel
