#include "KestrelCore/Usage/ModelRateCard.h"

#include <array>
#include <string>

#include "KestrelCore/Support/AsciiCase.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

struct Model {
  std::string_view key;
  /// Input, output, cache read, cache write, reasoning.
  ModelRateCard rates;
  std::int64_t contextWindow;
};

constexpr std::array<Model, 19> kModels{{
    {"claude-3-5-sonnet-20241022", {3.0, 15.0, 0.3, 3.75, 15.0}, 200'000},
    {"claude-3-5-sonnet", {3.0, 15.0, 0.3, 3.75, 15.0}, 200'000},
    {"claude-3-sonnet", {3.0, 15.0, 0.3, 3.75, 15.0}, 200'000},
    {"claude-3-5-haiku", {0.8, 4.0, 0.08, 1.0, 4.0}, 200'000},
    {"claude-3-opus", {15.0, 75.0, 1.5, 18.75, 75.0}, 200'000},
    {"claude-opus-5", {15.0, 75.0, 1.5, 18.75, 75.0}, 200'000},
    {"gpt-4o", {2.5, 10.0, 1.25, 0.0, 10.0}, 128'000},
    {"gpt-4o-mini", {0.15, 0.6, 0.075, 0.0, 0.6}, 128'000},
    {"o1-preview", {15.0, 60.0, 0.0, 0.0, 60.0}, 128'000},
    {"o1-mini", {3.0, 12.0, 0.0, 0.0, 12.0}, 128'000},
    {"o1", {15.0, 60.0, 0.0, 0.0, 60.0}, 200'000},
    {"o3-mini", {1.1, 4.4, 0.0, 0.0, 4.4}, 200'000},
    {"gpt-5.6-terra", {3.0, 12.0, 1.5, 0.0, 12.0}, 258'400},
    {"gemini-1.5-pro", {3.5, 10.5, 0.875, 0.0, 10.5}, 2'000'000},
    {"gemini-1.5-flash", {0.075, 0.3, 0.01875, 0.0, 0.3}, 1'000'000},
    {"gemini-2.0-flash", {0.1, 0.4, 0.025, 0.0, 0.4}, 1'000'000},
    {"gemini-3.7-flash", {0.1, 0.4, 0.025, 0.0, 0.4}, 1'000'000},
    {"nemotron-3.5-lightning-free", {0.0, 0.0, 0.0, 0.0, 0.0}, 128'000},
    {"deepseek-v4-flash-free", {0.0, 0.0, 0.0, 0.0, 0.0}, 128'000},
}};

/// The longest key that the id contains; that is also the one it equals, so blanks need no trimming.
const Model* find(std::optional<std::string_view> modelId) {
  if (!modelId) return nullptr;
  const std::string id = lowerCased(*modelId);
  const Model* longest = nullptr;
  for (const Model& model : kModels) {
    if (longest != nullptr && longest->key.size() >= model.key.size()) continue;
    if (id.find(model.key) != std::string::npos) longest = &model;
  }
  return longest;
}

double millions(std::optional<std::int64_t> tokens) {
  return static_cast<double>(tokens.value_or(0)) / 1e6;
}

}  // namespace

double ModelRateCard::cost(const TokenCounts& counts) const {
  return millions(counts.inputTokens) * inputPerMillionUSD +
         millions(counts.outputTokens) * outputPerMillionUSD +
         millions(counts.cachedTokens) * cacheReadPerMillionUSD +
         millions(counts.cacheWriteTokens) * cacheWritePerMillionUSD +
         millions(counts.reasoningTokens) * reasoningPerMillionUSD;
}

std::optional<ModelRateCard> ModelRateCard::rates(std::optional<std::string_view> modelId) {
  const Model* model = find(modelId);
  return model == nullptr ? std::nullopt : std::optional(model->rates);
}

std::optional<std::int64_t> ModelRateCard::contextWindow(std::optional<std::string_view> modelId) {
  const Model* model = find(modelId);
  return model == nullptr ? std::nullopt : std::optional(model->contextWindow);
}

std::optional<double> ModelRateCard::estimateCost(std::optional<std::string_view> modelId,
                                                  const TokenCounts& counts) {
  const Model* model = find(modelId);
  return model == nullptr ? std::nullopt : std::optional(model->rates.cost(counts));
}

Json encode(const ModelRateCard& card) {
  return {{"inputPerMillionUSD", card.inputPerMillionUSD},
          {"outputPerMillionUSD", card.outputPerMillionUSD},
          {"cacheReadPerMillionUSD", card.cacheReadPerMillionUSD},
          {"cacheWritePerMillionUSD", card.cacheWritePerMillionUSD},
          {"reasoningPerMillionUSD", card.reasoningPerMillionUSD}};
}

ModelRateCard decodeModelRateCard(const Json& object) {
  return {.inputPerMillionUSD = requiredDouble(object, "inputPerMillionUSD"),
          .outputPerMillionUSD = requiredDouble(object, "outputPerMillionUSD"),
          .cacheReadPerMillionUSD = requiredDouble(object, "cacheReadPerMillionUSD"),
          .cacheWritePerMillionUSD = requiredDouble(object, "cacheWritePerMillionUSD"),
          .reasoningPerMillionUSD = requiredDouble(object, "reasoningPerMillionUSD")};
}

}  // namespace kestrel
