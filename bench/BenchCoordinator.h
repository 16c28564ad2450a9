#pragma once

#include <memory>
#include <string>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelCore/UsageCoordinator.h"
#include "KestrelPlatform/Simulated/SimulatedPlatform.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel::bench {

/// Drops every line, as a system's log does with what nobody reads.
class NoLog final : public LogSink {
 public:
  [[nodiscard]] bool isEnabled(LogLevel) const override { return false; }
  void write(const LogRecord&) override {}
};

/// A coordinator on the machine's clock and simulated services.
struct BenchCoordinator {
  explicit BenchCoordinator(Executor& executor)
      : settings(*outside.platform.userDefaults, clock),
        usage(usersOwnUsage(executor, home.directories(),
                            std::make_shared<AtomicFileWriter>(policy, Logger(log, "files")), clock, log)),
        coordinator(AppCoordinator::create(
            {outside.platform, executor, settings, clock, log, policy, home.directories(), usage})) {}

  /// A hook event of a session.
  void report(const std::string& session, AgentState state) {
    HookEvent event;
    event.agent = AgentType::claude;
    event.sessionId = session;
    event.state = state;
    event.timestamp = clock->now();
    event.cwd = "/home/u/p/a-project-with-a-usual-name";
    coordinator->agentCoordinator().didReceiveHookEvent(event);
  }

  TemporaryDirectories home;
  std::shared_ptr<LogSink> log = std::make_shared<NoLog>();
  std::shared_ptr<const Clock> clock = std::make_shared<SystemClock>();
  std::shared_ptr<const KestrelWritePolicy> policy =
      std::make_shared<KestrelWritePolicy>(home.directories(), log);
  SimulatedPlatform outside = simulatedPlatform();
  SettingsStore settings;
  UsageCoordinator usage;
  std::shared_ptr<AppCoordinator> coordinator;
};

}  // namespace kestrel::bench
