#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Agents/HookEvent.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Executor.h"
#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelCore/Support/Published.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Usage/ProviderBudgetReport.h"
#include "KestrelCore/Usage/Providers/UsageMetricsProvider.h"
#include "KestrelCore/Usage/UsageStore.h"

namespace kestrel {

/// The one object that the rest asks about usage: feeds the store from the agents' records and from hooks,
/// and publishes today's sum, its hours and the days before, the recent sessions, each agent's latest report
/// and what is running low. The published values belong to the main thread, everything slow to a queue of its
/// own, and the other functions to any thread.
class UsageCoordinator final {
 public:
  using Providers = std::vector<std::unique_ptr<UsageMetricsProvider>>;
  struct Dependencies {
    Executor& mainExecutor;
    std::shared_ptr<const Clock> clock;
    std::shared_ptr<LogSink> logSink;
    /// Opens the store, on the queue, since a large one takes its time.
    std::function<std::unique_ptr<UsageStore>()> openStore;
    /// Makes the readers of the agents' records.
    std::function<Providers(const UsageStore&)> makeProviders;
  };
  using Reports = std::map<AgentType, ProviderBudgetReport>;
  using Alerts = std::map<AgentType, LowBudgetAlert>;

  using SharedSessions = std::shared_ptr<const std::vector<SessionUsageRecord>>;

  static constexpr std::size_t kRecentSessions = 25;

  explicit UsageCoordinator(Dependencies dependencies);
  /// Finishes what is under way, and completes the store's file.
  ~UsageCoordinator();
  UsageCoordinator(const UsageCoordinator&) = delete;
  UsageCoordinator& operator=(const UsageCoordinator&) = delete;

  /// Loads the store, starts the readers and publishes, all of it later. Nothing when it runs already.
  void start();
  /// Stops the readers and completes the store's file, later.
  void stop();

  /// Records a hook event's tokens and publishes its report; nothing for an event without tokens.
  void handleHookEvent(const HookEvent& event);
  /// Records an event, later; what it changes is published.
  void handleUsageEvent(const UsageEvent& event);

  /// Reads the sums again and publishes them.
  void refreshSummaries();
  /// Asks every reader for its report and publishes them.
  void refreshBudgetReports();
  /// Forgets everything that was recorded.
  void resetUsageData();
  /// Hands the last active sessions, the latest first and at most so many, to the callback, on the main
  /// thread.
  void requestSessions(std::size_t limit, std::function<void(SharedSessions)> done);
  /// Hands the store's export to the callback, on the main thread.
  void exportPrivacySafeJSON(std::function<void(const std::string&)> done);

  /// Absent until the store was loaded.
  [[nodiscard]] const Published<std::optional<UsageSummary>>& todaySummary() const { return todaySummary_; }
  [[nodiscard]] const Published<std::vector<SessionUsageRecord>>& recentSessions() const {
    return recentSessions_;
  }
  /// Of today.
  [[nodiscard]] const Published<HourlyTokens>& tokensByHour() const { return tokensByHour_; }
  /// UsageSeries::kDays days, today last; empty until the store was loaded.
  [[nodiscard]] const Published<std::vector<DayTokens>>& tokensByDay() const { return tokensByDay_; }
  [[nodiscard]] const Published<Reports>& latestBudgetReports() const { return latestBudgetReports_; }
  [[nodiscard]] const Published<Alerts>& lowBudgetAlerts() const { return lowBudgetAlerts_; }
  [[nodiscard]] std::optional<ProviderBudgetReport> budgetReport(AgentType agent) const;

 private:
  // On the queue.
  UsageStore& store();
  void startProviders();
  void recordBatch(const std::vector<UsageEvent>& events);
  void readSummaries();
  void readBudgetReports();

  void requestRefresh();
  void publishReports(const Reports& reports);
  void onMain(std::function<void()> task);

  const Dependencies dependencies_;
  const Logger logger_;
  Mutex lock_;
  bool isRunning_ KESTREL_GUARDED_BY(lock_) = false;
  std::atomic<bool> refreshPending_{false};

  // Main thread.
  Published<std::optional<UsageSummary>> todaySummary_;
  Published<std::vector<SessionUsageRecord>> recentSessions_;
  Published<HourlyTokens> tokensByHour_;
  Published<std::vector<DayTokens>> tokensByDay_;
  Published<Reports> latestBudgetReports_;
  Published<Alerts> lowBudgetAlerts_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();

  /// Made on the queue and never replaced; the readers' threads use it from then on.
  std::unique_ptr<UsageStore> store_;
  Providers providers_;
  RegistrationPtr upkeep_;
  /// Last, so that its thread has ended before anything it uses goes.
  SerialQueue tasks_{"com.kestrel.usage.coordinator"};
};

/// This user's store, and the readers of Claude Code's, Codex's and OpenCode's records.
UsageCoordinator::Dependencies usersOwnUsage(Executor& mainExecutor, const Directories& directories,
                                             std::shared_ptr<const AtomicFileWriter> files,
                                             const std::shared_ptr<const Clock>& clock,
                                             const std::shared_ptr<LogSink>& logSink);

}  // namespace kestrel
