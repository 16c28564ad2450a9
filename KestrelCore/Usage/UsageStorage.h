#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/InstanceLock.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Usage/UsageJournal.h"
#include "KestrelCore/Usage/UsageLedger.h"

namespace kestrel {

/// Keeps a ledger on disk, in the store's file and, once that has grown, in the journal beside it, so that
/// saving an event costs the same whatever the store holds. One process at a time writes: it holds a lock on
/// a file of its own beside the store. A failure is one log line; what could not be saved is tried again with
/// the next that is. Not thread-safe.
class UsageStorage {
 public:
  /// Smaller files are written anew each time, and need no journal.
  static constexpr std::uint64_t kSmallFileBytes = 64 * 1024;
  /// The file is written anew when the journal has reached this part of it; in idle moments the second.
  static constexpr std::uint64_t kJournalPart = 4;
  static constexpr std::uint64_t kIdleJournalPart = 16;

  /// Without `files` it only reads, and takes no lock.
  UsageStorage(std::filesystem::path file, std::shared_ptr<const AtomicFileWriter> files,
               std::shared_ptr<const Clock> clock, Logger logger);

  /// To be called once and first. A file of the layout before is written anew at once.
  [[nodiscard]] UsageLedger load();
  /// Saves what was added to the ledger since the last time that this succeeded.
  void saveAdded(const UsageLedger& ledger);
  /// Removes the journal, then writes the file from the ledger, which was emptied.
  void saveReset(const UsageLedger& emptied);
  /// Makes the file complete when the journal has grown enough for a moment without other work.
  void saveWhenIdle(const UsageLedger& ledger);
  /// Makes the file complete.
  void saveAtStop(const UsageLedger& ledger);

 private:
  [[nodiscard]] bool mayWrite();
  void acquireLock();
  void replayJournal(UsageLedger& ledger);
  [[nodiscard]] FileFailure appendAdded(const UsageLedger& ledger);
  void rewrite(const UsageLedger& ledger);
  [[nodiscard]] FileFailure writeFile(const UsageLedger& ledger);
  [[nodiscard]] bool hasUnsaved(const UsageLedger& ledger) const;
  void report(const FileFailure& failure) const;
  [[nodiscard]] std::string keptSuffix() const;

  const std::filesystem::path path_;
  const std::shared_ptr<const AtomicFileWriter> files_;
  const std::shared_ptr<const Clock> clock_;
  const Logger logger_;

  InstanceLock lock_;
  InstanceLock::Outcome lockOutcome_ = InstanceLock::Outcome::failed;
  std::optional<UsageJournal> journal_;
  /// As last read or written.
  std::uint64_t fileBytes_ = 0;
  /// The first row that may not be on disk.
  UsageRows::Position unsaved_ = 0;
  /// The file holds something else than the ledger, which appending cannot mend.
  bool mustRewrite_ = false;
  /// What the journal holds was reset.
  bool journalIsVoid_ = false;
  /// What stands in the place of the file is to be kept under another name.
  bool fileIsUnusable_ = false;
  /// After a failure, the file is not written anew before the journal has grown to so many bytes.
  std::uint64_t rewriteNotBefore_ = 0;
  /// Lines that are being appended.
  std::string lines_;
};

}  // namespace kestrel
