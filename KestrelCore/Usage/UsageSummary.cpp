#include "KestrelCore/Usage/UsageSummary.h"

#include <cmath>
#include <fmt/format.h>

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/OptionalFields.h"

namespace kestrel {
namespace {

/// Both kinds of summary have the same sums.
template <typename Sums>
Json encodeSums(const Sums& sums) {
  Json object = {{"totalTokens", sums.totalTokens},           {"inputTokens", sums.inputTokens},
                 {"outputTokens", sums.outputTokens},         {"cachedTokens", sums.cachedTokens},
                 {"cacheWriteTokens", sums.cacheWriteTokens}, {"reasoningTokens", sums.reasoningTokens},
                 {"sessionCount", sums.sessionCount},         {"turnCount", sums.turnCount}};
  setIfPresent(object, "estimatedCostUSD", sums.estimatedCostUSD);
  return object;
}

template <typename Sums>
Sums decodeSums(const Json& object) {
  Sums sums;
  sums.totalTokens = requiredInteger(object, "totalTokens");
  sums.inputTokens = requiredInteger(object, "inputTokens");
  sums.outputTokens = requiredInteger(object, "outputTokens");
  sums.cachedTokens = requiredInteger(object, "cachedTokens");
  sums.cacheWriteTokens = requiredInteger(object, "cacheWriteTokens");
  sums.reasoningTokens = requiredInteger(object, "reasoningTokens");
  sums.estimatedCostUSD = doubleIfPresent(object, "estimatedCostUSD");
  sums.sessionCount = requiredInteger(object, "sessionCount");
  sums.turnCount = requiredInteger(object, "turnCount");
  return sums;
}

}  // namespace

Json encode(const UsageSummary& summary) {
  Json object = encodeSums(summary);
  Json& byAgent = object["byAgent"] = Json::object();
  for (const auto& [agent, sums] : summary.byAgent) byAgent[agent] = encodeSums(sums);
  return object;
}

UsageSummary decodeUsageSummary(const Json& object) {
  auto summary = decodeSums<UsageSummary>(object);
  const Json& byAgent = requiredMember(object, "byAgent");
  if (!byAgent.is_object()) throw DecodingError("The value for key 'byAgent' is not an object");
  for (const auto& [agent, sums] : byAgent.items()) {
    summary.byAgent.emplace(agent, decodeSums<AgentUsageSummary>(sums));
  }
  return summary;
}

std::string formatTokenCompact(std::int64_t tokens) {
  if (tokens < 1000) return fmt::format("{}", tokens);
  if (tokens < 1'000'000) return fmt::format("{}k", (tokens + 500) / 1000);
  const double millions = static_cast<double>(tokens) / 1e6;
  return millions == std::floor(millions) ? fmt::format("{:.0f}M", millions)
                                          : fmt::format("{:.1f}M", millions);
}

}  // namespace kestrel
