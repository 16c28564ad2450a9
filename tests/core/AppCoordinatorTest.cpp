#include <atomic>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/core/AppCoordinatorFixture.h"

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

using enum AgentState;

const std::string kReleased = "Sleep enabled — No active agent sessions";
const std::string kWorking = "Active (1 working agent) — Claude Code working";
const std::string kIdleSleep = "PreventUserIdleSystemSleep";

class AppCoordinatorTest : public AppCoordinatorFixture {
 protected:
  AppCoordinatorTest() { app_->start(); }

  /// The status after a change.
  std::string after(const std::function<void()>& change) {
    change();
    executor_.runPending();
    return status();
  }
};

TEST_F(AppCoordinatorTest, HoldsWhileAnAgentWorksAndThroughTheDebounce) {
  hook("s", working);
  const Date began = world_.clock->now();
  EXPECT_EQ(status(), kWorking);
  EXPECT_EQ(inForce(), kIdleSleep);
  executor_.advance(10);
  hook("s", idle);
  EXPECT_EQ(status(), "Active (0 working agents) — Release debounce (30s)");
  executor_.advance(29);
  EXPECT_EQ(status(), "Active (0 working agents) — Release debounce (1s)");
  EXPECT_EQ(app_->protectionStartedAt().get(), began) << "one hold all along";
  executor_.advance(1);
  EXPECT_EQ(status(), kReleased);
  EXPECT_EQ(inForce(), "");
  EXPECT_EQ(machine_.powerAssertions->calls().size(), 2U) << "taken once, released once";
}

class RecordingSurface final : public StatusSurface {
 public:
  [[nodiscard]] std::string_view surfaceIdentifier() const override { return "recording"; }
  void render(const KestrelDisplayState& state) override { shown.push_back(state); }
  std::vector<KestrelDisplayState> shown;
};

TEST_F(AppCoordinatorTest, SurfacesAreShownEachEvaluation) {
  const auto surface = std::make_shared<RecordingSurface>();
  app_->addSurface(surface);
  ASSERT_EQ(surface->shown.size(), 1U) << "what is known already";
  setBattery(60, true, true);
  hook("a", working);
  hook("b", waiting);
  hook("c", completed);
  executor_.advance(5);
  EXPECT_EQ(surface->shown.back(), app_->displayState());
  KestrelDisplayState expected{KestrelVisualState::working,
                               2,
                               3,
                               app_->currentDecision().get(),
                               60,
                               true,
                               true,
                               false,
                               std::nullopt,
                               false,
                               5};
  EXPECT_EQ(surface->shown.back(), expected);
  settings_.pause(90);
  executor_.advance(30);
  const auto& paused = surface->shown.back();
  EXPECT_EQ(paused.visualState, KestrelVisualState::error);
  EXPECT_EQ(paused.pauseRemainingSeconds, 60);
  EXPECT_EQ(paused.elapsedProtectionSeconds, 0);
  executor_.advance(60);
  EXPECT_FALSE(surface->shown.back().isPaused) << "over, though still stored";
  EXPECT_EQ(app_->dominantVisualState().get(), KestrelVisualState::working);
}

TEST_F(AppCoordinatorTest, SettingsAndSafetyRulesActAtOnceAndComeBack) {
  setBattery(80);
  hook("s", working);
  const auto heat = [&](int level) {
    machine_.thermal->set(level);
    machine_.thermal->fireChange();
  };
  const struct {
    std::function<void()> change;
    std::string expected;
  } rows[] = {
      {[&] { settings_.setMasterEnabled(false); }, "Safety blocked: Master switch disabled"},
      {[&] { settings_.setMasterEnabled(true); }, kWorking},
      {[&] { settings_.setOnlyOnAC(true); }, "Safety blocked: AC power disconnected (AC-only mode)"},
      {[&] { setBattery(80, true); }, kWorking},
      {[&] { heat(3); }, "Safety blocked: Thermal critical safety cutoff"},
      {[&] { heat(2); }, kWorking},
      {[&] { settings_.pause(1.5); }, "Safety blocked: Protection paused"},
      {[&] { executor_.advance(2); }, kWorking},  // The tick notices the end of the pause.
  };
  for (const auto& row : rows) {
    EXPECT_EQ(after(row.change), row.expected);
    EXPECT_EQ(inForce(), row.expected == kWorking ? kIdleSleep : "");
  }
}

TEST_F(AppCoordinatorTest, RemembersABatteryCutoffUntilTheLevelOrThePowerIsBack) {
  hook("s", working);
  const std::string cutoff = "Safety blocked: Battery level below safety cutoff";
  const struct {
    int percent;
    bool onAC;
    bool charging;
    std::string expected;
  } rows[] = {
      {16, false, false, kWorking},
      {15, false, false, cutoff},
      {17, false, false, cutoff},
      // Charging without mains, as from a weak supply, lifts the block but not the memory.
      {17, false, true, kWorking},
      {17, false, false, cutoff},
      {18, false, false, kWorking},
      {15, false, false, cutoff},
      {15, true, false, kWorking},
      {16, false, false, kWorking},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(after([&] { setBattery(row.percent, row.onAC, row.charging); }), row.expected) << &row - rows;
  }
}

TEST_F(AppCoordinatorTest, FollowsTheDisplayFlagAndRetriesWhatFailed) {
  machine_.powerAssertions->setCreateCode(PowerAssertions::kPreventIdleSystemSleep, 5);
  hook("s", working);
  EXPECT_EQ(status(), kWorking);
  EXPECT_EQ(inForce(), "");
  EXPECT_EQ(app_->hold().get().state, HoldState::wanted);
  machine_.powerAssertions->setCreateCode(PowerAssertions::kPreventIdleSystemSleep, 0);
  executor_.advance(1);
  EXPECT_EQ(inForce(), kIdleSleep);
  EXPECT_EQ(app_->hold().get().state, HoldState::inForce);
  after([&] { settings_.setPreventDisplaySleep(true); });
  EXPECT_EQ(inForce(), kIdleSleep + " PreventUserIdleDisplaySleep");
}

TEST_F(AppCoordinatorTest, MergesRequests) {
  while (!app_->helperStatus().get()) executor_.runPending();
  executor_.runPending();
  int evaluations = 0;
  const auto counting = app_->observeEvaluations([&] { ++evaluations; });
  for (int i = 0; i < 5; ++i) app_->requestEvaluation();
  setBattery(80);
  EXPECT_EQ(evaluations, 1);
  app_->requestEvaluation();
  app_->evaluate();
  executor_.runPending();
  EXPECT_EQ(evaluations, 2) << "an evaluation answers the requests made before it";
}

TEST_F(AppCoordinatorTest, TellsHowProtectionBeginsAndEnds) {
  std::size_t seen = 0;
  const auto posted = [&] {
    std::string text;
    const auto& all = machine_.notifications->posted();
    for (; seen < all.size(); ++seen) text += all[seen].identifier + ": " + all[seen].body + "\n";
    return text;
  };
  EXPECT_EQ(machine_.notifications->requests().size(), 1U);
  setBattery(80);
  hook("s", working);
  hook("t", working);
  EXPECT_EQ(posted(), "kestrel.started: 1 coding agent session working.\n") << "once for one hold";
  const std::string started = "kestrel.started: 2 coding agent sessions working.\n";
  const auto heat = [&](int level) {
    machine_.thermal->set(level);
    machine_.thermal->fireChange();
  };
  const struct {
    std::function<void()> change;
    std::string expected;
  } rows[] = {
      {[&] { setBattery(15); }, "kestrel.battery: Kestrel released sleep protection at 15%.\n"},
      {[&] { setBattery(80); }, started},
      {[&] { heat(3); },
       "kestrel.thermal: Kestrel released sleep protection so macOS can cool down normally.\n"},
      {[&] { heat(0); }, started},
      {[&] { settings_.pause(100); }, ""},
      {[&] { settings_.resume(); }, started},
      {[&] { settings_.setNotificationsEnabled(false); }, ""},
      {[&] { settings_.setMasterEnabled(false); }, ""},
      {[&] { settings_.setMasterEnabled(true); }, ""},
      {[&] { settings_.setNotificationsEnabled(true); }, ""},
      {[&] { hook("s", idle), hook("t", idle), executor_.advance(30); },
       "kestrel.finished: Normal sleep behavior has been restored.\n"},
  };
  for (const auto& row : rows) {
    after(row.change);
    EXPECT_EQ(posted(), row.expected) << &row - rows;
  }
}

TEST_F(AppCoordinatorTest, TheShortcutTogglesTheMasterSwitchAndFamiliesFollow) {
  const KeyPress shortcut{KeyPress::kKeyL, KeyPress::kOption | KeyPress::kCommand};
  hook("s", working);
  ASSERT_EQ(app_->agentFamilies().get().size(), 1U);
  EXPECT_EQ(app_->agentFamilies().get()[0].workingSessionCount, 1U);
  machine_.keyMonitor->pressElsewhere(shortcut);
  EXPECT_EQ(status(), "Safety blocked: Master switch disabled");
  EXPECT_TRUE(machine_.keyMonitor->pressHere(shortcut));
  EXPECT_EQ(status(), kWorking);
  app_->stop();
  machine_.keyMonitor->pressElsewhere(shortcut);
  EXPECT_TRUE(settings_.masterEnabled()) << "not after the end";
}

TEST_F(AppCoordinatorTest, DiagnosticsTellEverythingButWhatIsPrivate) {
  HookEvent event;
  event.agent = AgentType::claude;
  event.sessionId = "s";
  event.state = waiting;
  event.timestamp = world_.clock->now();
  event.cwd = world_.directories().home.string() + "/p";
  app_->agentCoordinator().didReceiveHookEvent(event);
  executor_.runPending();
  const std::string text = app_->exportDiagnosticsJSON();
  const Json report = parseJson(text);
  EXPECT_EQ(text, report.dump(2)) << "indented, with sorted keys";
  EXPECT_EQ(report["activeAgentCount"], 1);
  EXPECT_EQ(report["policyDecision"], kWorking);
  EXPECT_EQ(report["timestamp"], iso8601(world_.clock->now()));
  EXPECT_EQ(report["sessions"][0]["cwd"], "~/p");
  EXPECT_THAT(text, testing::Not(testing::HasSubstr(world_.directories().home.string())));
  EXPECT_EQ(report["systemAssertionsSummary"], "");
}

TEST_F(AppCoordinatorTest, SilentSessionsGoStaleAndAreForgottenAfterADay) {
  hook("s", working);
  executor_.advance(900);
  EXPECT_EQ(status(), kWorking);
  executor_.advance(1);
  EXPECT_EQ(status(), "Active (0 working agents) — Release debounce (30s)");
  world_.clock->advance(86'400 - 2);  // As if the machine had slept.
  executor_.advance(1);
  EXPECT_EQ(app_->activeSessionsList().get().size(), 1U);
  executor_.advance(1);
  EXPECT_TRUE(app_->activeSessionsList().get().empty());
}

TEST_F(AppCoordinatorTest, StopReleasesForGood) {
  hook("s", working);
  app_->requestEvaluation();
  app_->stop();
  EXPECT_EQ(inForce(), "");
  EXPECT_FALSE(std::filesystem::exists(world_.directories().hookSocket()));
  hook("t", working);
  app_->evaluate();
  executor_.advance(5);
  EXPECT_EQ(inForce(), "") << "something late took it again";
}

TEST_F(AppCoordinatorTest, NoChangeFromAnotherThreadGetsLost) {
  std::vector<std::thread> threads;
  for (const std::string id : {"s", "t"}) {
    threads.emplace_back([this, id] {
      HookEvent event;
      event.sessionId = id;
      event.timestamp = world_.clock->now();
      for (int i = 0; i < 200; ++i) {
        event.state = i % 2 == 0 ? idle : working;
        app_->agentCoordinator().didReceiveHookEvent(event);
      }
    });
  }
  for (int i = 0; i < 200; ++i) executor_.advance(0.01);  // Ticks among them.
  for (auto& thread : threads) thread.join();
  executor_.runPending();
  EXPECT_EQ(status(), "Active (2 working agents) — Custom Agent working");
}

/// Tells when something is posted.
struct WatchedExecutor final : Executor {
  void post(Task) override { onPost(); }
  RegistrationPtr after(double, Task) override { return nullptr; }
  RegistrationPtr repeat(double, double, Task) override { return nullptr; }
  RegistrationPtr watch(int, Readiness, Task) override { return nullptr; }

  std::function<void()> onPost = [] {};
};

TEST(AppCoordinatorEnd, IsOnTheMainThreadAlsoWhileAHookIsBeingApplied) {
  const TestWorld world;
  WatchedExecutor executor;
  SimulatedPlatform machine = simulatedPlatform();
  SettingsStore settings(*machine.userDefaults, world.clock);
  std::atomic<int> posting = 0;
  std::atomic<bool> mayGoOn = false;
  UsageCoordinator usage(usersOwnUsage(executor, world.directories(), nullptr, world.clock, world.sink));
  auto app = AppCoordinator::create({machine.platform, executor, settings, world.clock, world.sink,
                                     world.policy, world.directories(), usage});
  executor.onPost = [&] {
    ++posting;
    while (!mayGoOn) std::this_thread::yield();
  };
  app->start();
  const SocketClient client(world.directories().hookSocket());
  client.send(R"({"agent":"claude","state":"working"})");
  // The hook, the first scan of the processes, the helper's first status and the first sums.
  while (posting < 4) std::this_thread::yield();

  // Whoever drops the last reference ends the coordinator and waits for those threads, which therefore may go
  // on as soon as this thread has dropped its own.
  std::atomic<bool> dropped = false;
  std::thread releaser([&, weak = std::weak_ptr(app)] {
    while (!dropped && !weak.expired()) std::this_thread::yield();
    mayGoOn = true;
  });
  app->stop();
  app.reset();
  dropped = true;
  releaser.join();
  EXPECT_EQ(client.receive(), "{\"ok\":true}\n");
}

}  // namespace
}  // namespace kestrel
