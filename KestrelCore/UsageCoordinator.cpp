#include "KestrelCore/UsageCoordinator.h"

#include <utility>

#include "KestrelCore/Usage/HookUsage.h"
#include "KestrelCore/Usage/Providers/ClaudeUsageProvider.h"
#include "KestrelCore/Usage/Providers/CodexUsageProvider.h"
#include "KestrelCore/Usage/Providers/OpenCodeUsageProvider.h"

namespace kestrel {
namespace {

/// How soon a new day shows, and how often a grown journal is looked at.
constexpr double kUpkeepSeconds = 30;

}  // namespace

UsageCoordinator::UsageCoordinator(Dependencies dependencies)
    : dependencies_(std::move(dependencies)), logger_(dependencies_.logSink, "usage.coordinator") {}

UsageCoordinator::~UsageCoordinator() {
  stop();
}

void UsageCoordinator::start() {
  {
    const LockGuard guard(lock_);
    if (isRunning_) return;
    isRunning_ = true;
  }
  logger_.info("Starting UsageCoordinator and telemetry providers...");
  tasks_.post([this] { startProviders(); });
}

void UsageCoordinator::stop() {
  {
    const LockGuard guard(lock_);
    if (!isRunning_) return;
    isRunning_ = false;
  }
  tasks_.post([this] {
    upkeep_.reset();
    for (const auto& provider : providers_) provider->stopMonitoring();
    store().saveAtStop();
  });
}

UsageStore& UsageCoordinator::store() {
  if (!store_) store_ = dependencies_.openStore();
  return *store_;
}

void UsageCoordinator::startProviders() {
  if (providers_.empty()) providers_ = dependencies_.makeProviders(store());
  for (const auto& provider : providers_) {
    provider->startMonitoring(nullptr,
                              [this](const std::vector<UsageEvent>& events) { recordBatch(events); });
  }
  upkeep_ = tasks_.repeat(kUpkeepSeconds, kUpkeepSeconds, [this] {
    store().saveWhenIdle();
    readSummaries();
  });
  readSummaries();
  readBudgetReports();
}

/// On a reader's thread, which so goes no faster than the store.
void UsageCoordinator::recordBatch(const std::vector<UsageEvent>& events) {
  if (store_->record(events) > 0) requestRefresh();
}

void UsageCoordinator::handleUsageEvent(const UsageEvent& event) {
  tasks_.post([this, event] {
    if (store().record(event)) requestRefresh();
  });
}

void UsageCoordinator::handleHookEvent(const HookEvent& event) {
  // A model alone, which some hooks always name, is no usage.
  if (!carriesTokens(event)) return;
  if (const auto usage = toUsageEvent(event)) handleUsageEvent(*usage);
  onMain([this, report = toBudgetReport(event, dependencies_.clock->now())] {
    publishReports({{report.agentType, report}});
  });
}

/// However many events arrive meanwhile, one refresh follows them.
void UsageCoordinator::requestRefresh() {
  if (refreshPending_.exchange(true)) return;
  tasks_.post([this] {
    refreshPending_ = false;
    readSummaries();
    readBudgetReports();
  });
}

void UsageCoordinator::refreshSummaries() {
  tasks_.post([this] { readSummaries(); });
}

void UsageCoordinator::refreshBudgetReports() {
  tasks_.post([this] { readBudgetReports(); });
}

void UsageCoordinator::readSummaries() {
  onMain([this, today = store().todaySummary(), series = store().series(),
          sessions = store().recentSessions(kRecentSessions)] {
    todaySummary_.set(today);
    tokensByHour_.set(series.hours());
    tokensByDay_.set(series.days());
    recentSessions_.set(sessions);
  });
}

void UsageCoordinator::readBudgetReports() {
  Reports reports;
  for (const auto& provider : providers_) {
    if (auto report = provider->latestBudgetReport())
      reports.emplace(provider->agentType(), *std::move(report));
  }
  onMain([this, reports = std::move(reports)] { publishReports(reports); });
}

/// Adds to what other agents, and hooks, have reported.
void UsageCoordinator::publishReports(const Reports& reports) {
  Reports all = latestBudgetReports_.get();
  for (const auto& [agent, report] : reports) all.insert_or_assign(agent, report);
  Alerts alerts;
  for (const auto& [agent, report] : all) {
    if (report.lowBudgetAlert) alerts.emplace(agent, *report.lowBudgetAlert);
  }
  lowBudgetAlerts_.set(std::move(alerts));
  latestBudgetReports_.set(std::move(all));
}

void UsageCoordinator::resetUsageData() {
  tasks_.post([this] {
    store().resetStore();
    onMain([this, series = store().series()] {
      todaySummary_.set(UsageSummary());
      tokensByHour_.set(series.hours());
      tokensByDay_.set(series.days());
      recentSessions_.set({});
      lowBudgetAlerts_.set({});
      latestBudgetReports_.set({});
      logger_.info("UsageCoordinator telemetry data reset.");
    });
  });
}

void UsageCoordinator::requestSessions(std::size_t limit, std::function<void(SharedSessions)> done) {
  tasks_.post([this, limit, done = std::move(done)] {
    auto sessions = std::make_shared<const std::vector<SessionUsageRecord>>(store().recentSessions(limit));
    onMain([done, sessions = std::move(sessions)] { done(sessions); });
  });
}

void UsageCoordinator::exportPrivacySafeJSON(std::function<void(const std::string&)> done) {
  tasks_.post([this, done = std::move(done)] {
    onMain([done, text = store().exportPrivacySafeJSON()] { done(text); });
  });
}

std::optional<ProviderBudgetReport> UsageCoordinator::budgetReport(AgentType agent) const {
  const auto found = latestBudgetReports_.get().find(agent);
  return found == latestBudgetReports_.get().end() ? std::nullopt : std::optional(found->second);
}

void UsageCoordinator::onMain(std::function<void()> task) {
  dependencies_.mainExecutor.post([alive = std::weak_ptr(alive_), task = std::move(task)] {
    if (!alive.expired()) task();
  });
}

UsageCoordinator::Dependencies usersOwnUsage(Executor& mainExecutor, const Directories& directories,
                                             std::shared_ptr<const AtomicFileWriter> files,
                                             const std::shared_ptr<const Clock>& clock,
                                             const std::shared_ptr<LogSink>& logSink) {
  return {mainExecutor, clock, logSink,
          [file = UsageStore::defaultFile(directories), files = std::move(files), clock, logSink] {
            return std::make_unique<UsageStore>(UsageStore::Dependencies{
                file, files, clock, std::make_shared<SystemLocalCalendar>(), logSink});
          },
          [home = directories.home, clock, logSink](const UsageStore& store) {
            const UsageReaderDependencies reading{home, clock, logSink,
                                                  [&store](AgentType agent, const std::string& turnId) {
                                                    return store.hasTurn(agent, turnId);
                                                  }};
            UsageCoordinator::Providers providers;
            providers.push_back(std::make_unique<ClaudeUsageProvider>(reading));
            providers.push_back(std::make_unique<CodexUsageProvider>(reading));
            providers.push_back(std::make_unique<OpenCodeUsageProvider>(reading));
            return providers;
          }};
}

}  // namespace kestrel
