#pragma once

#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "tests/core/TestSupport.h"

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/UsageCoordinator.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/SimulatedPlatform.h"

namespace kestrel {

/// The whole core on a simulated machine, with virtual time.
class AppCoordinatorFixture : public testing::Test {
 protected:
  ~AppCoordinatorFixture() override { app_->stop(); }

  void hook(const std::string& id, AgentState state, AgentType agent = AgentType::claude) {
    HookEvent event;
    event.sessionId = id;
    event.agent = agent;
    event.state = state;
    event.timestamp = world_.clock->now();
    app_->agentCoordinator().didReceiveHookEvent(event);
    executor_.runPending();
  }

  void setBattery(std::int64_t percent, bool onAC = false, bool charging = false) {
    machine_.powerSource->set(PowerSource::List{
        PowerSourceDescription{onAC ? "AC Power" : "Battery Power", charging, percent, 100, {}}});
    machine_.powerSource->fireChange();
    executor_.runPending();
  }

  [[nodiscard]] std::string status() const { return app_->currentDecision().get().statusDescription(); }
  /// The types of the assertions in force.
  [[nodiscard]] std::string inForce() const {
    std::string text;
    for (const auto& call : machine_.powerAssertions->inForce())
      text += (text.empty() ? "" : " ") + call.type;
    return text;
  }

  TestWorld world_;
  ManualExecutor executor_{world_.clock};
  SimulatedPlatform machine_ = simulatedPlatform();
  SettingsStore settings_{*machine_.userDefaults, world_.clock};
  UsageCoordinator usage_{
      usersOwnUsage(executor_, world_.directories(),
                    std::make_shared<AtomicFileWriter>(world_.policy, Logger(world_.sink, "files")),
                    world_.clock, world_.sink)};
  const std::shared_ptr<AppCoordinator> app_ =
      AppCoordinator::create({machine_.platform, executor_, settings_, world_.clock, world_.sink,
                              world_.policy, world_.directories(), usage_});
};

}  // namespace kestrel
