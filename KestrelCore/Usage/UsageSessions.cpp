#include "KestrelCore/Usage/UsageSessions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace kestrel {
namespace {

constexpr std::array kSums = {&SessionUsageRecord::inputTokens, &SessionUsageRecord::outputTokens,
                              &SessionUsageRecord::cachedTokens, &SessionUsageRecord::cacheWriteTokens,
                              &SessionUsageRecord::reasoningTokens};
constexpr std::array kCounts = {&UsageEvent::inputTokens, &UsageEvent::outputTokens,
                                &UsageEvent::cachedTokens, &UsageEvent::cacheWriteTokens,
                                &UsageEvent::reasoningTokens};

bool addTokens(SessionUsageRecord& record, const UsageEvent& event) {
  bool overflows = __builtin_add_overflow(record.totalTokens, event.effectiveTotalTokens().value_or(0),
                                          &record.totalTokens);
  for (std::size_t i = 0; i < kSums.size(); ++i) {
    std::int64_t& sum = record.*kSums[i];
    overflows |= __builtin_add_overflow(sum, (event.*kCounts[i]).value_or(0), &sum);
  }
  if (event.costEstimateUSD) {
    record.estimatedCostUSD = record.estimatedCostUSD.value_or(0) + *event.costEstimateUSD;
    overflows |= !std::isfinite(*record.estimatedCostUSD);
  }
  return !overflows;
}

bool addEvent(SessionUsageRecord& record, const UsageEvent& event) {
  record.lastActiveAt = std::max(record.lastActiveAt, event.timestamp);
  record.durationSeconds = std::max(record.lastActiveAt - record.startedAt, 0.0);
  if (event.contextWindow) record.contextWindow = event.contextWindow;
  if (event.quotaRemainingPercent) record.quotaRemainingPercent = event.quotaRemainingPercent;
  return addTokens(record, event) && std::isfinite(record.durationSeconds);
}

SessionUsageRecord newRecord(const UsageEvent& event) {
  SessionUsageRecord record;
  record.id = event.sessionId;
  record.agentType = event.agentType;
  record.modelId = event.modelId;
  record.startedAt = record.lastActiveAt = event.timestamp;
  return record;
}

}  // namespace

bool UsageSessions::LaterFirst::operator()(const Records::value_type* a, const Records::value_type* b) const {
  if (a->second.lastActiveAt != b->second.lastActiveAt) {
    return a->second.lastActiveAt > b->second.lastActiveAt;
  }
  return a->first < b->first;
}

bool UsageSessions::fold(const UsageEvent& event) {
  const auto known = records_.find(event.sessionId);
  SessionUsageRecord next = known == records_.end() ? newRecord(event) : known->second;
  if (!addEvent(next, event)) return false;
  if (known == records_.end()) {
    byActivity_.insert(&*records_.emplace(event.sessionId, std::move(next)).first);
  } else if (next.lastActiveAt == known->second.lastActiveAt) {
    known->second = std::move(next);
  } else {
    auto place = byActivity_.extract(&*known);
    known->second = std::move(next);
    byActivity_.insert(std::move(place));
  }
  return true;
}

void UsageSessions::put(std::string_view sessionId, const SessionUsageRecord& record) {
  const auto entry = records_.emplace(sessionId, record);
  if (!entry.second) {
    byActivity_.erase(&*entry.first);
    entry.first->second = record;
  }
  byActivity_.insert(&*entry.first);
}

std::vector<SessionUsageRecord> UsageSessions::recent(std::size_t limit) const {
  std::vector<SessionUsageRecord> records;
  records.reserve(std::min(limit, byActivity_.size()));
  for (const auto* entry : byActivity_) {
    if (records.size() == limit) break;
    records.push_back(entry->second);
  }
  return records;
}

void UsageSessions::forEach(
    const std::function<void(const std::string&, const SessionUsageRecord&)>& take) const {
  for (const auto& [sessionId, record] : records_) take(sessionId, record);
}

}  // namespace kestrel
