#include "KestrelCore/Usage/SessionUsageRecord.h"

#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Usage/OptionalFields.h"

namespace kestrel {

Json encode(const SessionUsageRecord& record) {
  Json object = {{"id", record.id},
                 {"agentType", rawValue(record.agentType)},
                 {"startedAt", record.startedAt.secondsSinceReferenceDate()},
                 {"lastActiveAt", record.lastActiveAt.secondsSinceReferenceDate()},
                 {"durationSeconds", record.durationSeconds},
                 {"totalTokens", record.totalTokens},
                 {"inputTokens", record.inputTokens},
                 {"outputTokens", record.outputTokens},
                 {"cachedTokens", record.cachedTokens},
                 {"cacheWriteTokens", record.cacheWriteTokens},
                 {"reasoningTokens", record.reasoningTokens}};
  setIfPresent(object, "modelId", record.modelId);
  setIfPresent(object, "estimatedCostUSD", record.estimatedCostUSD);
  setIfPresent(object, "contextWindow", record.contextWindow);
  setIfPresent(object, "quotaRemainingPercent", record.quotaRemainingPercent);
  return object;
}

SessionUsageRecord decodeSessionUsageRecord(const Json& object) {
  return {.id = requiredString(object, "id"),
          .agentType = requiredRawValue<AgentType>(object, "agentType"),
          .modelId = stringIfPresent(object, "modelId"),
          .startedAt = requiredDate(object, "startedAt"),
          .lastActiveAt = requiredDate(object, "lastActiveAt"),
          .durationSeconds = requiredDouble(object, "durationSeconds"),
          .totalTokens = requiredInteger(object, "totalTokens"),
          .inputTokens = requiredInteger(object, "inputTokens"),
          .outputTokens = requiredInteger(object, "outputTokens"),
          .cachedTokens = requiredInteger(object, "cachedTokens"),
          .cacheWriteTokens = requiredInteger(object, "cacheWriteTokens"),
          .reasoningTokens = requiredInteger(object, "reasoningTokens"),
          .estimatedCostUSD = doubleIfPresent(object, "estimatedCostUSD"),
          .contextWindow = integerIfPresent(object, "contextWindow"),
          .quotaRemainingPercent = doubleIfPresent(object, "quotaRemainingPercent")};
}

}  // namespace kestrel
