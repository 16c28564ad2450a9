#include "screenshots/Stage.h"

#include <thread>
#include <utility>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/Support/AtomicFile.h"

namespace kestrel {
namespace {

SimulatedPlatform platformOf(const Stage::Machine& machine) {
  SimulatedPlatform platform = simulatedPlatform();
  if (machine.batteryPercent || !machine.isOnAC) {
    platform.powerSource->set(PowerSource::List{PowerSourceDescription{
        machine.isOnAC ? "AC Power" : "Battery Power", machine.isCharging, machine.batteryPercent, 100, {}}});
  } else {
    platform.powerSource->set(PowerSource::List{});
  }
  platform.lowPowerMode->set(machine.isLowPowerMode);
  platform.thermal->set(machine.heat);
  return platform;
}

}  // namespace

/// Tells the stage's reports, and reads nothing.
class Stage::Reporter final : public UsageMetricsProvider {
 public:
  Reporter(Stage& stage, AgentType agent) : stage_(stage), agent_(agent) {}

  [[nodiscard]] AgentType agentType() const override { return agent_; }
  [[nodiscard]] IntegrationType integrationType() const override { return IntegrationType::fallback; }
  void startMonitoring(OnEvent, OnEvents) override {}
  void stopMonitoring() override {}
  [[nodiscard]] std::vector<UsageEvent> pollLatestEvents() override { return {}; }
  [[nodiscard]] std::optional<ProviderBudgetReport> latestBudgetReport() override {
    const LockGuard guard(stage_.mutex_);
    const auto found = stage_.reports_.find(agent_);
    return found == stage_.reports_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  Stage& stage_;
  const AgentType agent_;
};

Stage::Stage(const Machine& machine)
    : policy_(std::make_shared<const KestrelWritePolicy>(folders_.directories(), sink_)),
      machine_(platformOf(machine)),
      settings_(*machine_.userDefaults, clock_),
      usage_(usageDependencies()),
      app_(AppCoordinator::create({machine_.platform, executor_, settings_, clock_, sink_, policy_,
                                   folders_.directories(), usage_})) {
  app_->evaluate();
}

Stage::~Stage() {
  app_->stop();
}

UsageCoordinator::Dependencies Stage::usageDependencies() {
  auto dependencies =
      usersOwnUsage(executor_, folders_.directories(),
                    std::make_shared<AtomicFileWriter>(policy_, Logger(sink_, "files")), clock_, sink_);
  dependencies.makeProviders = [this](const UsageStore&) {
    UsageCoordinator::Providers providers;
    for (std::size_t i = 0; i < RawValues<AgentType>::table.size(); ++i)
      providers.push_back(std::make_unique<Reporter>(*this, static_cast<AgentType>(i)));
    return providers;
  };
  return dependencies;
}

void Stage::hook(const std::string& session, AgentType agent, AgentState state,
                 const std::optional<std::string>& cwd) {
  HookEvent event;
  event.sessionId = session;
  event.agent = agent;
  event.state = state;
  event.cwd = cwd;
  event.timestamp = clock_->now();
  app_->agentCoordinator().didReceiveHookEvent(event);
  executor_.runPending();
}

void Stage::process(AgentType agent, std::int32_t pid) {
  app_->agentCoordinator().registerProcessSession(agent, pid, false,
                                                  AgentStateCoordinator::kProcessConfidence);
  executor_.runPending();
}

void Stage::startUsage() {
  usage_.start();
  settle();
}

void Stage::report(ProviderBudgetReport report) {
  report.lastUpdated = clock_->now() - 40;
  {
    const LockGuard guard(mutex_);
    reports_.insert_or_assign(report.agentType, std::move(report));
  }
  usage_.refreshBudgetReports();
  settle();
}

void Stage::use(AgentType agent, std::int64_t tokens, double costUSD, double secondsAgo,
                const std::string& session) {
  UsageEvent event{.agentType = agent, .sessionId = session, .inputTokens = tokens * 9 / 10};
  event.outputTokens = tokens - *event.inputTokens;
  event.costEstimateUSD = costUSD;
  event.timestamp = clock_->now() - secondsAgo;
  event.turnId = std::to_string(secondsAgo) + std::string(rawValue(agent));
  event.deriveTotal();
  usage_.handleUsageEvent(event);
}

void Stage::settle() {
  bool isDone = false;
  // Twice, since the first round may ask for a refresh.
  for (int round = 0; round < 2; ++round) {
    isDone = false;
    usage_.exportPrivacySafeJSON([&](const std::string&) { isDone = true; });
    while (!isDone) {
      executor_.runPending();
      std::this_thread::yield();
    }
  }
}

}  // namespace kestrel
