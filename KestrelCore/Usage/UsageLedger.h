#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KestrelCore/Usage/RowIndex.h"
#include "KestrelCore/Usage/UsageRows.h"
#include "KestrelCore/Usage/UsageSessions.h"

namespace kestrel {

/// The account in memory: every event once, the sessions folded from them, and the seen keys. Whatever it
/// holds can be added up in any selection without an overflow. Not thread-safe.
class UsageLedger {
 public:
  enum class Outcome {
    added,
    /// Its deduplication key is seen already.
    duplicate,
    /// A sum would not fit, a number is not finite, or the texts are too long. Nothing was changed.
    refused
  };

  /// The texts must be UTF-8.
  Outcome add(const UsageEvent& event);

  /// Makes room for about so many events.
  void reserve(std::size_t events);
  // What a file holds is taken as it is: an event whether its key is seen or not, and without its session.
  [[nodiscard]] bool loadEvent(const UsageEvent& event);
  void loadKey(std::string_view key);
  void loadSession(std::string_view sessionId, const SessionUsageRecord& record);

  /// Whether a turn of the agent with that id is stored, in whichever session.
  [[nodiscard]] bool hasTurn(AgentType agent, std::string_view turnId) const;

  [[nodiscard]] const UsageRows& rows() const { return rows_; }
  [[nodiscard]] const UsageSessions& sessions() const { return sessions_; }

 private:
  /// What the sums of all events would be if no two of them had opposite signs.
  struct Sums {
    std::array<std::int64_t, 6> counts{};
    double cost = 0;
    [[nodiscard]] bool add(const UsageEvent& event);
  };

  void store(const UsageEvent& event, bool keyIsSeen, std::uint32_t keyHash, bool indexKey);
  [[nodiscard]] std::optional<UsageRows::Position> findKey(std::string_view key, std::uint32_t hash) const;

  UsageRows rows_;
  RowIndex keys_;
  RowIndex turns_;
  UsageSessions sessions_;
  Sums sums_;
  /// While a file's keys come in the order of its events, each is the key of the row that stands here.
  UsageRows::Position nextKey_ = 0;
  /// Whether two of a file's events have the same key.
  bool hasRepeatedKeys_ = false;
};

}  // namespace kestrel
