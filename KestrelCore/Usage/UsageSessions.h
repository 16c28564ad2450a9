#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KestrelCore/Usage/SessionUsageRecord.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// The records of all sessions, by session id and by when they were last active. Not thread-safe.
class UsageSessions {
 public:
  /// Adds an event to its session, which begins with it when it is new. False, and nothing is changed, when a
  /// sum or the duration would not fit. A late event moves neither the start nor the last activity back.
  [[nodiscard]] bool fold(const UsageEvent& event);
  /// Puts a record as it is, in the place of one with that id.
  void put(std::string_view sessionId, const SessionUsageRecord& record);

  [[nodiscard]] std::size_t size() const { return records_.size(); }
  /// At most so many, the last active first. Costs no more than what it returns.
  [[nodiscard]] std::vector<SessionUsageRecord> recent(std::size_t limit) const;
  /// In no order.
  void forEach(
      const std::function<void(const std::string& sessionId, const SessionUsageRecord&)>& take) const;

 private:
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
  };
  using Records = std::unordered_map<std::string, SessionUsageRecord, TextHash, std::equal_to<>>;
  /// Equal times: by session id, so that the order is always the same.
  struct LaterFirst {
    bool operator()(const Records::value_type* a, const Records::value_type* b) const;
  };

  Records records_;
  std::set<const Records::value_type*, LaterFirst> byActivity_;
};

}  // namespace kestrel
