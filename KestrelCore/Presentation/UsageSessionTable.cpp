#include "KestrelCore/Presentation/UsageSessionTable.h"

#include <algorithm>
#include <compare>
#include <fmt/format.h>
#include <limits>
#include <numeric>
#include <utility>

#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Presentation/Words.h"
#include "KestrelCore/Usage/CostBudget.h"
#include "KestrelCore/Usage/UsageSummary.h"

namespace kestrel {
namespace {

using Record = SessionUsageRecord;
using Order = std::weak_ordering;

template <typename Value>
Order order(const Value& a, const Value& b) {
  return a < b ? Order::less : b < a ? Order::greater : Order::equivalent;
}

bool isUnknown(const Record& record, SessionColumn column) {
  if (column == SessionColumn::model) return !record.modelId || record.modelId->empty();
  return column == SessionColumn::cost && !record.estimatedCostUSD;
}

/// Of two records that are both known in the column.
Order compare(const Record& a, const Record& b, SessionColumn column) {
  switch (column) {
    case SessionColumn::agent:
      return order(displayName(a.agentType), displayName(b.agentType));
    case SessionColumn::model:
      return order(*a.modelId, *b.modelId);
    case SessionColumn::lastActive:
      return order(a.lastActiveAt, b.lastActiveAt);
    case SessionColumn::tokens:
      return order(a.totalTokens, b.totalTokens);
    case SessionColumn::cost:
      return order(*a.estimatedCostUSD, *b.estimatedCostUSD);
  }
  return Order::equivalent;
}

}  // namespace

std::string_view UsageSessionTable::title(SessionColumn column) {
  constexpr std::array<std::string_view, kColumns> kTitles{"Agent", "Model", "Last active", "Tokens", "Cost"};
  return kTitles[static_cast<std::size_t>(column)];
}

void UsageSessionTable::load(std::vector<Record> records) {
  records_ = std::move(records);
  if (records_.size() > kMaximumRows) records_.resize(kMaximumRows);
  byId_.clear();
  order_.resize(records_.size());
  std::iota(order_.begin(), order_.end(), 0U);
  for (std::uint32_t i = 0; i < records_.size(); ++i) byId_.emplace(records_[i].id, i);
  sort();
}

bool UsageSessionTable::refresh(const std::vector<Record>& recent) {
  // Only a reset leaves none.
  if (recent.empty()) {
    load({});
    return true;
  }
  std::size_t changes = 0;
  for (const Record& record : recent) {
    const auto [known, isNew] = byId_.emplace(record.id, static_cast<std::uint32_t>(records_.size()));
    if (isNew) {
      order_.push_back(known->second);
      records_.push_back(record);
    } else if (records_[known->second] == record) {
      continue;
    } else {
      records_[known->second] = record;
    }
    ++changes;
  }
  if (changes > 0) sort();
  return changes < recent.size() && records_.size() <= kMaximumRows;
}

void UsageSessionTable::sortBy(SessionColumn column, bool ascending) {
  column_ = column;
  isAscending_ = ascending;
  sort();
}

void UsageSessionTable::sort() {
  std::ranges::stable_sort(order_, [this](std::uint32_t left, std::uint32_t right) {
    const Record& a = records_[left];
    const Record& b = records_[right];
    if (isUnknown(a, column_) || isUnknown(b, column_)) return !isUnknown(a, column_);
    const Order result = compare(a, b, column_);
    return isAscending_ ? is_lt(result) : is_gt(result);
  });
}

std::string UsageSessionTable::text(std::size_t row, SessionColumn column, Date now) const {
  const Record& session = record(row);
  switch (column) {
    case SessionColumn::agent:
      return std::string(displayName(session.agentType));
    case SessionColumn::model:
      return isUnknown(session, column) ? "Model unknown" : *session.modelId;
    case SessionColumn::lastActive:
      return agoText(now - session.lastActiveAt);
    case SessionColumn::tokens:
      return formatTokenCompact(session.totalTokens);
    case SessionColumn::cost:
      return isUnknown(session, column) ? "Price unknown"
                                        : CostBudget{*session.estimatedCostUSD, true}.formattedCost();
  }
  return {};
}

std::string UsageSessionTable::tooltip(std::size_t row) const {
  const Record& session = record(row);
  return fmt::format(
      "{}\n{} tokens: {} in, {} out, {} reasoning\n{} read from the cache, {} written to it\n"
      "Active for {}",
      session.id, groupedDigits(session.totalTokens), groupedDigits(session.inputTokens),
      groupedDigits(session.outputTokens), groupedDigits(session.reasoningTokens),
      groupedDigits(session.cachedTokens), groupedDigits(session.cacheWriteTokens),
      durationText(session.durationSeconds));
}

}  // namespace kestrel
