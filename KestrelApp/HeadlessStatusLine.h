#pragma once

#include <string>

#include "KestrelCore/Presentation/StatusLine.h"
#include "KestrelCore/Support/Mutex.h"

namespace kestrel {

/// The status on an output without windows. On a terminal one line, rewritten in place and cut to the
/// terminal's width; elsewhere a new line each time that the text changes by more than a countdown. An output
/// that takes nothing now is not waited for: the next call tries again.
class HeadlessStatusLine {
 public:
  /// The descriptor stays the caller's.
  explicit HeadlessStatusLine(int descriptor);
  /// Leaves a terminal's cursor on a line of its own.
  ~HeadlessStatusLine();
  HeadlessStatusLine(const HeadlessStatusLine&) = delete;
  HeadlessStatusLine& operator=(const HeadlessStatusLine&) = delete;

  void show(const StatusLine& line);

  // For other text on the same terminal, from any thread: before and after it. Nothing elsewhere.
  void hide();
  void redraw();

  [[nodiscard]] bool isTerminal() const { return isTerminal_; }

 private:
  [[nodiscard]] bool writeNow(const std::string& text) const;
  [[nodiscard]] std::string onTerminal(const std::string& text) const;

  const int descriptor_;
  const bool isTerminal_;
  Mutex mutex_{LockRank::leaf};
  /// What was written last.
  std::string shown_ KESTREL_GUARDED_BY(mutex_);
};

/// The beginning of a UTF-8 text that fits into so many columns, ended by "…" when something is cut off.
/// Counts each code point as one column.
std::string cutToColumns(const std::string& text, std::size_t columns);

}  // namespace kestrel
