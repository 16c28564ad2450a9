#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Support/Mutex.h"
#include "KestrelCore/UsageCoordinator.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/SimulatedPlatform.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {

/// The whole core on a simulated machine at a fixed time, for views to look at. Nothing happens by itself.
class Stage {
 public:
  struct Machine {
    /// Absent: no battery.
    std::optional<std::int64_t> batteryPercent{};
    bool isOnAC = true;
    bool isCharging = false;
    bool isLowPowerMode = false;
    /// 0 to 3.
    int heat = 0;
  };

  Stage() : Stage(Machine{}) {}
  explicit Stage(const Machine& machine);
  ~Stage();
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  [[nodiscard]] AppCoordinator& app() { return *app_; }
  [[nodiscard]] SettingsStore& settings() { return settings_; }
  [[nodiscard]] UsageCoordinator& usage() { return usage_; }
  [[nodiscard]] SimulatedPlatform& machine() { return machine_; }
  [[nodiscard]] ManualExecutor& executor() { return executor_; }
  [[nodiscard]] ManualClock& clock() { return *clock_; }

  /// A hook's event of this moment.
  void hook(const std::string& session, AgentType agent, AgentState state,
            const std::optional<std::string>& cwd = std::nullopt);
  /// A process that a scan found.
  void process(AgentType agent, std::int32_t pid);
  /// Loads the account of usage; until then it is unknown.
  void startUsage();
  /// An agent's latest report; `agentType` says whose.
  void report(ProviderBudgetReport report);
  /// Tokens that were used so many seconds before now.
  void use(AgentType agent, std::int64_t tokens, double costUSD, double secondsAgo,
           const std::string& session);
  /// Waits until usage has told everything, and runs what follows from it.
  void settle();

 private:
  class Reporter;
  [[nodiscard]] UsageCoordinator::Dependencies usageDependencies();

  const std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>();
  const std::shared_ptr<MemoryLogSink> sink_ = std::make_shared<MemoryLogSink>();
  const TemporaryDirectories folders_;
  const std::shared_ptr<const KestrelWritePolicy> policy_;
  ManualExecutor executor_{clock_};
  SimulatedPlatform machine_;
  SettingsStore settings_;
  Mutex mutex_{LockRank::leaf};
  std::map<AgentType, ProviderBudgetReport> reports_ KESTREL_GUARDED_BY(mutex_);
  UsageCoordinator usage_;
  std::shared_ptr<AppCoordinator> app_;
};

}  // namespace kestrel
