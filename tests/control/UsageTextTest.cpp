#include <gtest/gtest.h>

#include "KestrelControl/UsageText.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

TEST(UsageText, TellsSumsReportsAndWhatRunsLow) {
  UsageSummary today;
  AgentUsageSummary& codex = today.byAgent["codex"];
  codex.totalTokens = today.totalTokens = 12'345;
  codex.estimatedCostUSD = today.estimatedCostUSD = 1.5;
  codex.turnCount = today.turnCount = 1;
  today.byAgent["later"];
  const Json usage = {
      {"today", encode(today)},
      {"reports",
       {{"codex",
         {{"summaryLine", "8% quota left · Critically Low"},
          {"contextBasis", "measured"},
          {"quotaBasis", "stale"},
          {"ageSeconds", 125}}}}},
      {"alerts", {{"codex", {{"message", "Account quota is critically low (8% remaining)"}}}}}};
  EXPECT_EQ(usageTodayText(usage),
            "Today              12k tokens  1 turn      $1.50 est.\n"
            "  Codex CLI        12k tokens  1 turn      $1.50 est.\n"
            "  later              0 tokens  0 turns\n"
            "Codex CLI      8% quota left · Critically Low (stale, 2 min 05 s ago)\n"
            "Codex CLI      Account quota is critically low (8% remaining)\n");
  for (const char* odd :
       {"null", "[]", R"({"today":{},"reports":[1],"alerts":"x"})", R"({"reports":{"a":1}})"}) {
    EXPECT_TRUE(usageTodayText(parseJson(odd)).starts_with("Today          unknown\n")) << odd;
  }
}

}  // namespace
}  // namespace kestrel
