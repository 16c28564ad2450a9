#include <tuple>

#include "tests/core/UsageFixtures.h"

#include "KestrelCore/Usage/ModelRateCard.h"

namespace kestrel {
namespace {

TEST(ModelRateCard, TheLongestContainedKeyCounts) {
  // The input price and the window tell the rows apart.
  const std::tuple<std::optional<std::string>, std::optional<std::int64_t>, double> rows[] = {
      {" \tGPT-4o\n", 128'000, 2.5},
      {"gpt-4o-mini-2024-07-18", 128'000, 0.15},
      {"openai/o1-preview", 128'000, 15},
      {"eu.anthropic.claude-3-5-haiku@latest", 200'000, 0.8},
      {"deepseek-v4-flash-free", 128'000, 0},
      {"gpt-4", {}, -1},
      {{}, {}, -1},
  };
  for (const auto& [model, window, price] : rows) {
    EXPECT_EQ(ModelRateCard::contextWindow(model), window);
    EXPECT_EQ(ModelRateCard::estimateCost(model, {.inputTokens = 1'000'000}).value_or(-1), price);
  }
}

TEST(ModelRateCard, EachKindOfTokenHasItsPrice) {
  const std::pair<ModelRateCard::TokenCounts, double> rows[] = {{{}, 0},
                                                                {{.outputTokens = 500'000}, 2},
                                                                {{.cachedTokens = 1'000'000}, 0.08},
                                                                {{.reasoningTokens = 3'000'000}, 12},
                                                                {{.cacheWriteTokens = 2'000'000}, 2},
                                                                {{1'000'000, {}, {}, {}, 1'000'000}, 1.8}};
  const auto card = ModelRateCard::rates("claude-3-5-haiku").value_or(ModelRateCard());
  for (const auto& [counts, expected] : rows) EXPECT_DOUBLE_EQ(card.cost(counts), expected);
  EXPECT_EQ(decodeModelRateCard(encode(card)), card);
}

}  // namespace
}  // namespace kestrel
