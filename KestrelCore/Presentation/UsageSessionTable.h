#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KestrelCore/Usage/SessionUsageRecord.h"

namespace kestrel {

enum class SessionColumn { agent, model, lastActive, tokens, cost };

/// The recorded sessions as a table in any order. Only what is shown becomes text, and refreshing copies no
/// more than the sessions that changed. Main thread.
class UsageSessionTable {
 public:
  static constexpr std::size_t kColumns = 5;
  /// More are not shown.
  static constexpr std::size_t kMaximumRows = 10'000;

  static std::string_view title(SessionColumn column);

  /// Puts all of them in the place of those before.
  void load(std::vector<SessionUsageRecord> records);
  /// Takes the last active sessions, the latest first, into the table. False when there may be changes that
  /// they do not show, so that everything has to be loaded again.
  [[nodiscard]] bool refresh(const std::vector<SessionUsageRecord>& recent);
  /// Sorts now and after each change; equal rows stay as they were. Unknown models and costs come last.
  void sortBy(SessionColumn column, bool ascending);

  [[nodiscard]] SessionColumn sortColumn() const { return column_; }
  [[nodiscard]] bool isAscending() const { return isAscending_; }
  [[nodiscard]] std::size_t rowCount() const { return order_.size(); }
  /// Stays the same while the row moves, for the selection.
  [[nodiscard]] const std::string& key(std::size_t row) const { return record(row).id; }
  [[nodiscard]] const SessionUsageRecord& record(std::size_t row) const { return records_[order_[row]]; }
  /// "Claude Code", "12 s ago", "412k", "$4.10 est."; a reason where nothing is known.
  [[nodiscard]] std::string text(std::size_t row, SessionColumn column, Date now) const;
  /// The exact values of a row, one line each.
  [[nodiscard]] std::string tooltip(std::size_t row) const;

 private:
  void sort();

  std::vector<SessionUsageRecord> records_;
  std::unordered_map<std::string, std::uint32_t> byId_;
  std::vector<std::uint32_t> order_;
  SessionColumn column_ = SessionColumn::lastActive;
  bool isAscending_ = false;
};

}  // namespace kestrel
