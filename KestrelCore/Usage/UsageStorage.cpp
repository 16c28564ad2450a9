#include "KestrelCore/Usage/UsageStorage.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "KestrelCore/Usage/UsageJsonText.h"
#include "KestrelCore/Usage/UsageStoreFile.h"

namespace kestrel {
namespace {

/// A larger buffer is given back.
constexpr std::size_t kKeptLineBytes = 64 * 1024;

std::filesystem::path withSuffix(const std::filesystem::path& path, const std::string& suffix) {
  return path.string() + suffix;
}

/// "20261121T032705Z".
std::string compactTimestamp(Date date) {
  std::string text = iso8601(date).substr(0, sizeof("2026-11-21T03:27:05") - 1);
  std::erase_if(text, [](char c) { return c == '-' || c == ':'; });
  return text + "Z";
}

}  // namespace

UsageStorage::UsageStorage(std::filesystem::path file, std::shared_ptr<const AtomicFileWriter> files,
                           std::shared_ptr<const Clock> clock, Logger logger)
    : path_(std::move(file)),
      files_(std::move(files)),
      clock_(std::move(clock)),
      logger_(std::move(logger)) {}

UsageLedger UsageStorage::load() {
  if (files_) acquireLock();
  journal_.emplace(withSuffix(path_, ".journal"), files_);
  auto content = UsageStoreFile::load(path_);
  UsageLedger ledger = std::move(content.ledger);
  const std::size_t eventsInFile = ledger.rows().size();
  fileBytes_ = content.bytes;
  fileIsUnusable_ = content.found == UsageStoreFile::Found::unusable;
  if (content.found == UsageStoreFile::Found::schema) {
    logger_.info("Loaded {} usage events across {} sessions from disk (schema v{})", eventsInFile,
                 ledger.sessions().size(), content.schemaVersion);
  }
  replayJournal(ledger);
  unsaved_ = ledger.rows().end();
  if (content.found == UsageStoreFile::Found::legacy && files_) {
    logger_.info("Migrated {} usage events from legacy schema to schema v1", eventsInFile);
    mustRewrite_ = true;
    if (mayWrite()) rewrite(ledger);
  }
  return ledger;
}

void UsageStorage::replayJournal(UsageLedger& ledger) {
  const auto replay = journal_->replay(
      [&](const UsageEvent& event) { return ledger.add(event) != UsageLedger::Outcome::refused; });
  if (replay.events > 0) logger_.info("Read {} usage events from the journal", replay.events);
  if (replay.badLines > 0) {
    logger_.error("Ignored {} unusable lines of the usage journal beside {}", replay.badLines,
                  path_.string());
  }
  if (replay.error != 0) {
    logger_.error("Cannot read the usage journal beside {}: {} ({})", path_.string(),
                  std::generic_category().message(replay.error), replay.error);
  }
}

void UsageStorage::acquireLock() {
  lockOutcome_ = lock_.acquire(withSuffix(path_, ".lock"), *files_);
  if (lockOutcome_ == InstanceLock::Outcome::heldByAnother) {
    logger_.error("Another process keeps the usage store {}: this one saves nothing", path_.string());
  }
}

/// Where no lock can be had, because the folder is read-only or knows no locks, writing is tried all the
/// same.
bool UsageStorage::mayWrite() {
  if (!files_) return false;
  if (lockOutcome_ == InstanceLock::Outcome::failed) acquireLock();
  return lockOutcome_ != InstanceLock::Outcome::heldByAnother;
}

bool UsageStorage::hasUnsaved(const UsageLedger& ledger) const {
  return mustRewrite_ || unsaved_ != ledger.rows().end();
}

void UsageStorage::saveAdded(const UsageLedger& ledger) {
  if (!mayWrite()) return;
  if (mustRewrite_ || fileIsUnusable_ || fileBytes_ < kSmallFileBytes || !journal_->isUsable()) {
    return rewrite(ledger);
  }
  if (const auto failed = appendAdded(ledger)) {
    // On a full disk there is no room for the whole file either.
    return journal_->isUsable() ? report(failed) : rewrite(ledger);
  }
  if (journal_->size() >= std::max(fileBytes_ / kJournalPart, rewriteNotBefore_)) rewrite(ledger);
}

void UsageStorage::saveReset(const UsageLedger& emptied) {
  mustRewrite_ = true;
  journalIsVoid_ = true;
  unsaved_ = 0;
  if (mayWrite()) rewrite(emptied);
}

void UsageStorage::saveWhenIdle(const UsageLedger& ledger) {
  if (!mayWrite()) return;
  if (journal_->size() > 0 &&
      journal_->size() >= std::max(fileBytes_ / kIdleJournalPart, rewriteNotBefore_)) {
    rewrite(ledger);
  } else if (hasUnsaved(ledger)) {
    saveAdded(ledger);
  }
}

void UsageStorage::saveAtStop(const UsageLedger& ledger) {
  if (mayWrite() && (journal_->size() > 0 || hasUnsaved(ledger))) rewrite(ledger);
}

FileFailure UsageStorage::appendAdded(const UsageLedger& ledger) {
  const UsageRows& rows = ledger.rows();
  lines_.clear();
  UsageEvent event;
  for (auto row = rows.eventFrom(unsaved_); row; row = rows.eventFrom(rows.after(*row))) {
    rows.read(*row, event);
    appendJson(lines_, event);
    lines_.push_back('\n');
  }
  auto failed = journal_->append(lines_);
  if (!failed) unsaved_ = rows.end();
  if (lines_.capacity() > kKeptLineBytes) lines_ = std::string();
  return failed;
}

void UsageStorage::rewrite(const UsageLedger& ledger) {
  if (journalIsVoid_) {
    if (const auto failed = journal_->remove(keptSuffix())) return report(failed);
    journalIsVoid_ = false;
  }
  if (const auto failed = writeFile(ledger)) {
    rewriteNotBefore_ = journal_->size() + fileBytes_ / kIdleJournalPart;
    return report(failed);
  }
  // Should this not come about, or only after a crash: the events are known by their keys.
  if (journal_->size() > 0 || !journal_->isUsable()) report(journal_->remove(keptSuffix()));
}

FileFailure UsageStorage::writeFile(const UsageLedger& ledger) {
  std::uint64_t bytes = 0;
  const std::string suffix = fileIsUnusable_ ? keptSuffix() : std::string();
  auto failed = files_->replace(
      path_,
      [&](const auto& append) {
        UsageStoreFile::save(ledger, [&](std::string_view piece) {
          bytes += piece.size();
          append(piece);
        });
      },
      suffix);
  if (failed) return failed;
  if (fileIsUnusable_) {
    logger_.error("The usage store could not be read and was moved aside to {}{}", path_.string(), suffix);
  }
  fileIsUnusable_ = false;
  mustRewrite_ = false;
  rewriteNotBefore_ = 0;
  fileBytes_ = bytes;
  unsaved_ = ledger.rows().end();
  return failed;
}

void UsageStorage::report(const FileFailure& failure) const {
  if (failure) logger_.error("Failed to save usage store: {}", *failure);
}

std::string UsageStorage::keptSuffix() const {
  return ".undecodable-" + compactTimestamp(clock_->now());
}

}  // namespace kestrel
