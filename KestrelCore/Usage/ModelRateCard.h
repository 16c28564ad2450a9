#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// What a model costs, in US dollars per million tokens, and the built-in table of the models that are known.
///
/// A model is looked up in lower case and without surrounding blanks: by the key that it equals, else by the
/// longest key that it contains ("gpt-4o-mini-2024-07-18" is a "gpt-4o-mini").
struct ModelRateCard {
  double inputPerMillionUSD = 0;
  double outputPerMillionUSD = 0;
  double cacheReadPerMillionUSD = 0;
  double cacheWritePerMillionUSD = 0;
  double reasoningPerMillionUSD = 0;

  /// Absent counts cost nothing.
  struct TokenCounts {
    std::optional<std::int64_t> inputTokens{};
    std::optional<std::int64_t> outputTokens{};
    std::optional<std::int64_t> cachedTokens{};
    std::optional<std::int64_t> reasoningTokens{};
    std::optional<std::int64_t> cacheWriteTokens{};
  };
  /// US dollars.
  [[nodiscard]] double cost(const TokenCounts& counts) const;

  // Of the table; absent for an unknown or absent model.

  [[nodiscard]] static std::optional<ModelRateCard> rates(std::optional<std::string_view> modelId);
  /// Tokens.
  [[nodiscard]] static std::optional<std::int64_t> contextWindow(std::optional<std::string_view> modelId);
  /// US dollars.
  [[nodiscard]] static std::optional<double> estimateCost(std::optional<std::string_view> modelId,
                                                          const TokenCounts& counts);

  friend bool operator==(const ModelRateCard&, const ModelRateCard&) = default;
};

Json encode(const ModelRateCard& card);
/// Throws DecodingError.
ModelRateCard decodeModelRateCard(const Json& object);

}  // namespace kestrel
