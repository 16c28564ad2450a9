#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <tuple>

#include "tests/core/UsageFixtures.h"

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/LowBudgetThreshold.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"

namespace kestrel {
namespace {

TEST(ContextBudget, IsAlwaysWithinItsBounds) {
  const std::pair<ContextBudget, const char*> rows[] = {
      {{200, 50}, "50 of 200: 150 left, 75% 25%"},
      {{0, 10}, "10 of 1: 0 left, 0% 100%"},
      {{INT64_MAX, INT64_MIN}, "0 of 9223372036854775807: 9223372036854775807 left, 100% 0%"}};
  for (const auto& [budget, expected] : rows) {
    EXPECT_EQ(fmt::format("{} of {}: {} left, {}% {}%", budget.tokensConsumed(), budget.contextWindow(),
                          budget.tokensRemaining(), budget.percentageRemaining(), budget.percentageUsed()),
              expected);
  }
}

TEST(CostBudget, Texts) {
  const std::pair<CostBudget, const char*> rows[] = {
      {{0, false}, "$0.00"},     {{0.0049, true}, "<$0.01 est."},
      {{0.005, false}, "$0.01"}, {{1234.5, true}, "$1234.50 est."},
      {{-1, false}, "$-1.00"},   {{INFINITY, false}, "$inf"}};
  for (const auto& [cost, expected] : rows) EXPECT_EQ(cost.formattedCost(), expected);
}

TEST(LowBudgetThreshold, TheMoreSevereWinsAndContextOnATie) {
  const std::tuple<std::optional<double>, std::optional<double>, const char*> rows[] = {
      {{}, 20.01, "none"},
      {20, 100, "Context window is low (20% remaining)"},
      {8, 8, "Context window is critically low (8% remaining)"},
      {10, 10.01, "Context window is critically low (10% remaining)"},
      {5.01, 5, "Account quota is exhausted (5% remaining)"},
      {12.5, {}, "Context window is low (13% remaining)"},
      {-0.3, {}, "Context window is exhausted (0% remaining)"},
      {-1e300, 5, "Context window is exhausted (-1000000000000000052504760255204420248704468581108159154915"},
  };
  for (const auto& [context, quota, expected] : rows) {
    const auto alert = LowBudgetThreshold::evaluate(context, quota);
    EXPECT_EQ(alert ? alert->message.substr(0, std::strlen(expected)) : "none", expected);
  }
}

using Quota = BudgetMetric<AccountQuotaBudget>;

ProviderBudgetReport report(std::optional<ContextBudget> context, std::optional<double> quotaLeft,
                            std::optional<CostBudget> cost, std::optional<std::int64_t> total) {
  ProviderBudgetReport report{.agentType = AgentType::codex};
  if (context) report.context = BudgetMetric<ContextBudget>::known(*context, 1, "s");
  if (quotaLeft) report.quota = Quota::known({.percentageRemaining = *quotaLeft}, 1, "s");
  report.cost = cost;
  report.sessionUsage.totalTokens = total;
  report.lowBudgetAlert = LowBudgetThreshold::evaluate(0, quotaLeft);
  return report;
}

TEST(ProviderBudgetReport, SummaryLines) {
  const CostBudget cost{0.25, true};
  const std::tuple<ProviderBudgetReport, std::string, std::string> rows[] = {
      {report({{200'000, 80'000}}, 60, cost, {}),
       "120k context left · 60% remaining · Quota 60% left · $0.25 est.", "Last session: 120k context left"},
      {report({{1000, 1000}}, 20, cost, {}), "20% quota left · Exhausted · $0.25 est.",
       "Last session: 0 context left"},
      {report({}, 20.4, {}, {}), "Quota 20% left", "Idle · Ready for sessions"},
      {report({}, {}, {}, 1500), "2k tokens", "Last session: 2k tokens"},
      {report({}, {}, {}, 0), "Budget telemetry unavailable", "Idle · Ready for sessions"},
  };
  for (const auto& [row, active, idle] : rows) {
    EXPECT_EQ(row.actionableSummaryLine(), active);
    EXPECT_EQ(row.idleSummaryLine(), idle);
  }
  auto withoutAlert = report({}, 3, {}, {});
  withoutAlert.lowBudgetAlert.reset();
  EXPECT_EQ(withoutAlert.actionableSummaryLine(), "3% quota left · Low");
}

TEST(ProviderBudgetReport, FiguresSayWhatTheyAre) {
  auto known = report(ContextBudget(10, 1), 50, {}, {});
  EXPECT_EQ(known.contextBasis(), FigureBasis::measured);
  known.quota = Quota::known({.resetsAt = Date() + 100}, 1, "s");
  EXPECT_EQ(known.quotaBasis(Date() + 99.9), FigureBasis::measured);
  EXPECT_EQ(known.quotaBasis(Date() + 100), FigureBasis::stale);
}

TEST(ProviderBudgetReport, IsWrittenWithItsFieldNames) {
  const std::string full =
      R"({"agentType":"codex","context":{"confidence":1.0,"source":"s","type":"known","value":{"contextWindow":100,)"
      R"("percentageRemaining":92.0,"percentageUsed":8.0,"tokensConsumed":8,"tokensRemaining":92}},)"
      R"("cost":{"amountUSD":0.5,"isEstimated":true},"lastUpdated":5.5,)"
      R"("lowBudgetAlert":{"level":"critical","message":"m","metricType":"quota","percentageRemaining":7.5},)"
      R"("modelId":"m","quota":{"confidence":0.5,"source":"q","type":"known","value":{"percentageRemaining":7.5,)"
      R"("planType":"pro","resetsAt":9.5,"usedPercent":92.5,"windowMinutes":300}},)"
      R"("sessionId":"s","sessionUsage":{"inputTokens":3,"recordedAt":5.5},"source":"x"})";
  const auto again = [](const Json& json) { return encode(decodeProviderBudgetReport(json)); };
  EXPECT_EQ(dumpJson(again(parseJson(full))), full);
  EXPECT_EQ(optionalKeys(full, again), "cost lowBudgetAlert modelId sessionId ");

  const Json bare = encode(ProviderBudgetReport());
  EXPECT_EQ(dumpJson(bare["quota"]), R"({"reason":"Quota unavailable","type":"unavailable"})");
  EXPECT_EQ(decodeProviderBudgetReport(bare), ProviderBudgetReport());
}

}  // namespace
}  // namespace kestrel
