#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"
#include "KestrelCore/Usage/UsageEvent.h"

namespace kestrel {

/// What the readers of agents' records are made with.
struct UsageReaderDependencies {
  /// The user's home, below which the agents keep their records.
  std::filesystem::path home;
  std::shared_ptr<const Clock> clock;
  std::shared_ptr<LogSink> log;
  /// Whether a turn was already counted, whatever its session. Not empty; called on the reader's thread.
  std::function<bool(AgentType agent, const std::string& turnId)> hasTurn;
};

/// Reads one agent's records, as far as they are new. Belongs to one thread.
class UsageReader {
 public:
  using Sink = std::function<void(UsageEvent)>;

  virtual ~UsageReader() = default;

  /// Hands out what was not handed out before, in the order of each file.
  virtual void read(const Sink& sink) = 0;
  /// The report of the last reading, else of the newest record, which stays unread for `read`.
  [[nodiscard]] virtual std::optional<ProviderBudgetReport> report() = 0;
};

std::unique_ptr<UsageReader> makeClaudeUsageReader(const UsageReaderDependencies& dependencies);
std::unique_ptr<UsageReader> makeCodexUsageReader(const UsageReaderDependencies& dependencies);
std::unique_ptr<UsageReader> makeOpenCodeUsageReader(const UsageReaderDependencies& dependencies);

/// Where the agents keep their records.
std::filesystem::path claudeProjectsFolder(const std::filesystem::path& home);
std::filesystem::path codexSessionsFolder(const std::filesystem::path& home);
std::filesystem::path openCodeDatabaseFile(const std::filesystem::path& home);

}  // namespace kestrel
