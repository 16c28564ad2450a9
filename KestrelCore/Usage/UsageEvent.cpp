#include "KestrelCore/Usage/UsageEvent.h"

#include <algorithm>
#include <fmt/format.h>

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/OptionalFields.h"

namespace kestrel {
namespace {

/// Input + output + reasoning tokens; absent when below 1 or too large.
std::optional<std::int64_t> sumOfParts(const UsageEvent& event) {
  std::int64_t sum = event.inputTokens.value_or(0);
  if (__builtin_add_overflow(sum, event.outputTokens.value_or(0), &sum) ||
      __builtin_add_overflow(sum, event.reasoningTokens.value_or(0), &sum)) {
    return std::nullopt;
  }
  return sum < 1 ? std::nullopt : std::optional(sum);
}

/// The shortest decimal text that reads back equal, always with a fraction or an exponent: "1731715200.5",
/// "1731715200.0". Below 0.0001 and from 1e16 on it has an exponent, "1e+16".
std::string shortestText(double value) {
  std::string text = fmt::format("{}", value);
  if (text.find_first_not_of("-0123456789") == std::string::npos) text += ".0";
  return text;
}

}  // namespace

void UsageEvent::deriveTotal() {
  if (!totalTokens) totalTokens = sumOfParts(*this);
}

std::optional<std::int64_t> UsageEvent::effectiveTotalTokens() const {
  return totalTokens ? totalTokens : sumOfParts(*this);
}

std::optional<double> UsageEvent::contextUtilization() const {
  const auto tokens = effectiveTotalTokens();
  if (!tokens || *tokens < 1 || !contextWindow || *contextWindow < 1) return std::nullopt;
  return std::min(static_cast<double>(*tokens) / static_cast<double>(*contextWindow), 1.0);
}

std::string UsageEvent::deduplicationKey() const {
  if (turnId && !turnId->empty()) return fmt::format("{}_{}_{}", rawValue(agentType), sessionId, *turnId);
  return fmt::format("{}_{}_{}_{}", rawValue(agentType), sessionId,
                     shortestText(timestamp.secondsSince1970()), totalTokens.value_or(0));
}

Json encode(const UsageEvent& event) {
  Json object = {{"id", event.id},
                 {"agentType", rawValue(event.agentType)},
                 {"sessionId", event.sessionId},
                 {"timestamp", event.timestamp.secondsSinceReferenceDate()},
                 {"source", event.source}};
  setIfPresent(object, "turnId", event.turnId);
  setIfPresent(object, "modelId", event.modelId);
  setIfPresent(object, "inputTokens", event.inputTokens);
  setIfPresent(object, "outputTokens", event.outputTokens);
  setIfPresent(object, "cachedTokens", event.cachedTokens);
  setIfPresent(object, "cacheWriteTokens", event.cacheWriteTokens);
  setIfPresent(object, "reasoningTokens", event.reasoningTokens);
  setIfPresent(object, "totalTokens", event.totalTokens);
  setIfPresent(object, "contextWindow", event.contextWindow);
  setIfPresent(object, "costEstimateUSD", event.costEstimateUSD);
  setIfPresent(object, "quotaRemainingPercent", event.quotaRemainingPercent);
  return object;
}

UsageEvent decodeUsageEvent(const Json& object) {
  return {.id = requiredString(object, "id"),
          .agentType = requiredRawValue<AgentType>(object, "agentType"),
          .sessionId = requiredString(object, "sessionId"),
          .turnId = stringIfPresent(object, "turnId"),
          .modelId = stringIfPresent(object, "modelId"),
          .inputTokens = integerIfPresent(object, "inputTokens"),
          .outputTokens = integerIfPresent(object, "outputTokens"),
          .cachedTokens = integerIfPresent(object, "cachedTokens"),
          .cacheWriteTokens = integerIfPresent(object, "cacheWriteTokens"),
          .reasoningTokens = integerIfPresent(object, "reasoningTokens"),
          .totalTokens = integerIfPresent(object, "totalTokens"),
          .contextWindow = integerIfPresent(object, "contextWindow"),
          .costEstimateUSD = doubleIfPresent(object, "costEstimateUSD"),
          .quotaRemainingPercent = doubleIfPresent(object, "quotaRemainingPercent"),
          .timestamp = requiredDate(object, "timestamp"),
          .source = requiredString(object, "source")};
}

}  // namespace kestrel
