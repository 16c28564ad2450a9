#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// Usage events in the order of their arrival, packed so that a million of them take some 120 MB: repeated
/// strings once, numbers as long as they need, everything in large blocks. Between them stand bare keys:
/// deduplication keys that no event here has. Rows are never changed or removed. Not thread-safe.
class UsageRows {
 public:
  /// Where a row stands; grows with each row.
  using Position = std::uint32_t;

  /// More text in one event is refused by whoever adds it.
  static constexpr std::size_t kMaximumTextBytes = 64 * 1024;

  /// `keyIsSeen`: whether the event's key counts among the seen ones. At most kMaximumTextBytes of text.
  Position append(const UsageEvent& event, bool keyIsSeen);
  Position appendKey(std::string_view key);

  /// The number of events.
  [[nodiscard]] std::size_t size() const { return eventCount_; }
  /// Behind the last row.
  [[nodiscard]] Position end() const;
  /// The first event at a position or behind it.
  [[nodiscard]] std::optional<Position> eventFrom(Position position) const {
    return rowFrom(position, false);
  }
  /// The same for events whose key is seen and bare keys.
  [[nodiscard]] std::optional<Position> keyFrom(Position position) const { return rowFrom(position, true); }
  /// Behind a row.
  [[nodiscard]] Position after(Position position) const;

  /// Fills an event that is used again and again, which spares the allocations.
  void read(Position position, UsageEvent& event) const;
  [[nodiscard]] Date timestamp(Position position) const;
  [[nodiscard]] std::string key(Position position) const;
  [[nodiscard]] bool hasKey(Position position, std::string_view key) const;
  [[nodiscard]] bool hasTurn(Position position, AgentType agent, std::string_view turnId) const;
  /// True for bare keys.
  [[nodiscard]] bool keyIsSeen(Position position) const;
  void markKeySeen(Position position);

 private:
  struct Head;
  class Reader;
  /// Gives each distinct string a number, counted from 0.
  class Strings {
   public:
    std::uint32_t number(std::string_view text);
    [[nodiscard]] const std::string& text(std::uint32_t number) const { return *texts_[number]; }

   private:
    struct Hash {
      using is_transparent = void;
      std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    std::unordered_map<std::string, std::uint32_t, Hash, std::equal_to<>> numbers_;
    std::vector<const std::string*> texts_;
  };

  Position store(std::string_view row);
  [[nodiscard]] Position skipBlockEnd(Position position) const;
  [[nodiscard]] std::optional<Position> rowFrom(Position position, bool keys) const;
  [[nodiscard]] const char* at(Position position) const;
  [[nodiscard]] Head head(Position position) const;

  std::vector<std::unique_ptr<char[]>> blocks_;
  /// In units, of each block.
  std::vector<std::uint32_t> used_;
  std::size_t eventCount_ = 0;
  Strings strings_;
  /// The row that is being put together.
  std::string scratch_;
};

}  // namespace kestrel
