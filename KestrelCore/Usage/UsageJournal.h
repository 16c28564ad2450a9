#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/UniqueDescriptor.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// What was accepted since the usage store's file was written: one event's JSON per line, in a file beside it
/// that is only appended to. A last line without its line feed was never acknowledged: it is not read, and
/// cut off before the next is appended. Not thread-safe.
class UsageJournal {
 public:
  /// Longer lines are skipped.
  static constexpr std::size_t kMaximumLineBytes = std::size_t{1} << 20;

  struct Replay {
    std::size_t events = 0;
    /// Lines that were no event, or that `take` did not want.
    std::size_t badLines = 0;
    /// An error number when not everything could be read.
    int error = 0;
  };

  /// Opens what there is for reading. That has to happen before the store's file is read: whoever writes puts
  /// the events into the file first, and removes the journal after.
  UsageJournal(std::filesystem::path path, std::shared_ptr<const AtomicFileWriter> files);

  /// Hands over what was there, in order; once. `take` says whether the event was usable.
  Replay replay(const std::function<bool(const UsageEvent&)>& take);

  /// In bytes, up to the last line feed.
  [[nodiscard]] std::uint64_t size() const { return size_; }
  /// False while there may be more in the file than could be read, which must not be appended to.
  [[nodiscard]] bool isUsable() const { return isUsable_; }

  /// Adds whole lines: all of them or, on a failure, none. When the file was removed or is in doubt, it is
  /// not usable any more.
  [[nodiscard]] FileFailure append(std::string_view lines);
  /// What could not be read is moved aside under the suffix instead.
  [[nodiscard]] FileFailure remove(const std::string& keptSuffix);

 private:
  const std::filesystem::path path_;
  const std::shared_ptr<const AtomicFileWriter> files_;
  UniqueDescriptor reading_;
  AppendFile appending_;
  std::uint64_t size_ = 0;
  int openError_ = 0;
  bool isUsable_ = true;
  bool isUnread_ = false;
};

}  // namespace kestrel
