#include "KestrelCore/Usage/UsageLedger.h"

#include <cmath>
#include <string>

#include "KestrelCore/Usage/UsageSummaryBuilder.h"

namespace kestrel {
namespace {

bool addMagnitude(std::int64_t& sum, std::int64_t value) {
  return value < 0 ? !__builtin_sub_overflow(sum, value, &sum) : !__builtin_add_overflow(sum, value, &sum);
}

bool isStorable(const UsageEvent& event) {
  const std::size_t bytes = event.id.size() + event.sessionId.size() + event.source.size() +
                            event.turnId.value_or("").size() + event.modelId.value_or("").size();
  return bytes <= UsageRows::kMaximumTextBytes &&
         std::isfinite(event.timestamp.secondsSinceReferenceDate()) &&
         std::isfinite(event.costEstimateUSD.value_or(0)) &&
         std::isfinite(event.quotaRemainingPercent.value_or(0));
}

std::uint32_t turnHash(AgentType agent, std::string_view turnId) {
  return RowIndex::hash(turnId) + static_cast<std::uint32_t>(agent);
}

}  // namespace

bool UsageLedger::Sums::add(const UsageEvent& event) {
  const auto added = UsageSummaryBuilder::Contribution::of(event);
  if (!added) return false;
  const std::array<std::int64_t, 6> values = {added->totalTokens,      added->inputTokens,
                                              added->outputTokens,     added->cachedTokens,
                                              added->cacheWriteTokens, added->reasoningTokens};
  Sums next = *this;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!addMagnitude(next.counts[i], values[i])) return false;
  }
  next.cost += std::abs(event.costEstimateUSD.value_or(0));
  if (!std::isfinite(next.cost)) return false;
  *this = next;
  return true;
}

UsageLedger::Outcome UsageLedger::add(const UsageEvent& event) {
  if (!isStorable(event)) return Outcome::refused;
  const std::string key = event.deduplicationKey();
  const std::uint32_t hash = RowIndex::hash(key);
  const auto known = findKey(key, hash);
  if (known && rows_.keyIsSeen(*known)) return Outcome::duplicate;
  Sums sums = sums_;
  if (!sums.add(event) || !sessions_.fold(event)) return Outcome::refused;
  sums_ = sums;
  if (known) rows_.markKeySeen(*known);
  store(event, !known, hash, !known);
  return Outcome::added;
}

bool UsageLedger::loadEvent(const UsageEvent& event) {
  if (!isStorable(event) || !sums_.add(event)) return false;
  const std::string key = event.deduplicationKey();
  const std::uint32_t hash = RowIndex::hash(key);
  const bool isRepeated = findKey(key, hash).has_value();
  hasRepeatedKeys_ |= isRepeated;
  store(event, false, hash, !isRepeated);
  return true;
}

void UsageLedger::reserve(std::size_t events) {
  keys_.reserve(events);
  turns_.reserve(events);
}

void UsageLedger::loadKey(std::string_view key) {
  auto row = hasRepeatedKeys_ ? std::nullopt : rows_.eventFrom(nextKey_);
  if (!row || !rows_.hasKey(*row, key)) row = findKey(key, RowIndex::hash(key));
  if (!row) return keys_.add(RowIndex::hash(key), rows_.appendKey(key));
  rows_.markKeySeen(*row);
  nextKey_ = rows_.after(*row);
}

void UsageLedger::loadSession(std::string_view sessionId, const SessionUsageRecord& record) {
  sessions_.put(sessionId, record);
}

void UsageLedger::store(const UsageEvent& event, bool keyIsSeen, std::uint32_t keyHash, bool indexKey) {
  const auto position = rows_.append(event, keyIsSeen);
  if (indexKey) keys_.add(keyHash, position);
  if (event.turnId && !event.turnId->empty() && !hasTurn(event.agentType, *event.turnId)) {
    turns_.add(turnHash(event.agentType, *event.turnId), position);
  }
}

std::optional<UsageRows::Position> UsageLedger::findKey(std::string_view key, std::uint32_t hash) const {
  return keys_.find(hash, [&](auto position) { return rows_.hasKey(position, key); });
}

bool UsageLedger::hasTurn(AgentType agent, std::string_view turnId) const {
  const auto matches = [&](auto position) { return rows_.hasTurn(position, agent, turnId); };
  return turns_.find(turnHash(agent, turnId), matches).has_value();
}

}  // namespace kestrel
