#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "KestrelCore/Usage/Providers/LogFiles.h"
#include "KestrelCore/Usage/Providers/LogLineReader.h"
#include "KestrelCore/Usage/Providers/UsageReader.h"

namespace kestrel {

/// What readers of JSON lines share: which files are read, how far, and which report counts. `FileState` is
/// what is remembered of a file; it has a `position`.
template <typename FileState>
class LogUsageReader : public UsageReader {
 public:
  LogUsageReader(const std::string& folder, const std::string& category, std::shared_ptr<LogSink> log)
      : files_(folder), logger_(std::move(log), category) {}

  void read(const Sink& sink) final {
    unreadableLines_ = 0;
    bool hasReport = false;
    for (const auto& file : files_.takeForReading()) {
      FileState& state = states_[file.path];
      bool isRead = false;
      auto report = readFile(file, state, &sink, isRead);
      if (!isRead) files_.retry(file);
      // They come newest first.
      if (!report || std::exchange(hasReport, true)) continue;
      report_ = std::move(report);
    }
    if (unreadableLines_ > 0)
      logger_.debug("Passed over {} lines that are no JSON objects", unreadableLines_);
  }

  std::optional<ProviderBudgetReport> report() final {
    if (report_) return report_;
    const auto file = files_.newest();
    if (!file || file->stamp == withoutReport_) return std::nullopt;
    const auto known = states_.find(file->path);
    FileState probe = known == states_.end() ? FileState() : known->second;
    bool isRead = false;
    report_ = readFile(*file, probe, nullptr, isRead);
    if (!report_) withoutReport_ = file->stamp;
    return report_;
  }

 protected:
  /// Takes one line. Without a sink only the report counts, and of the reader nothing may change. `report` is
  /// that of an earlier line of the same reading; a line that tells something replaces it.
  virtual void take(const LogLineReader::Line& line, const LogFiles::File& file, FileState& state,
                    const Sink* sink, std::optional<ProviderBudgetReport>& report) = 0;

  [[nodiscard]] const std::optional<ProviderBudgetReport>& lastKnownReport() const { return report_; }
  void countUnreadableLine() { ++unreadableLines_; }

 private:
  std::optional<ProviderBudgetReport> readFile(const LogFiles::File& file, FileState& state, const Sink* sink,
                                               bool& isRead) {
    std::optional<ProviderBudgetReport> report;
    isRead = lines_.read(file.path, state.position,
                         [&](const LogLineReader::Line& line) { take(line, file, state, sink, report); });
    return report;
  }

  LogFiles files_;
  LogLineReader lines_;
  Logger logger_;
  std::unordered_map<std::string, FileState> states_;
  std::optional<ProviderBudgetReport> report_;
  /// The newest file when it was last read in vain for a report.
  FileStamp withoutReport_;
  std::int64_t unreadableLines_ = 0;
};

}  // namespace kestrel
