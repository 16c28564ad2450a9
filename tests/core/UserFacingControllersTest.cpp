#include <gmock/gmock.h>

#include "tests/core/TestSupport.h"

#include "KestrelCore/GlobalShortcutController.h"
#include "KestrelCore/LaunchAtLoginController.h"
#include "KestrelCore/NotificationController.h"
#include "KestrelPlatform/Simulated/SimulatedPlatform.h"

namespace kestrel {
namespace {

struct NotificationControllerTest : testing::Test {
  TestWorld world_;
  SimulatedPlatform machine_ = simulatedPlatform();
  SettingsStore settings_{*machine_.userDefaults, world_.clock};
  NotificationController controller_{*machine_.notifications, *machine_.chime, settings_, world_.sink};
};

TEST_F(NotificationControllerTest, PostsEachKindWithItsTextsAndAChime) {
  for (const int count : {2, 1, 0}) controller_.notifyProtectionStarted(count);
  controller_.notifyBatteryCutoff(14);
  controller_.notifyThermalCutoff();
  controller_.notifyProtectionFinished();
  std::string all;
  for (const auto& each : machine_.notifications->posted())
    all += each.identifier + "|" + each.title + "|" + each.body + "\n";
  EXPECT_EQ(all, R"(kestrel.started|Kestrel is protecting this Mac|2 coding agent sessions working.
kestrel.started|Kestrel is protecting this Mac|1 coding agent session working.
kestrel.started|Kestrel is protecting this Mac|0 coding agent sessions working.
kestrel.battery|Battery limit reached|Kestrel released sleep protection at 14%.
kestrel.thermal|Thermal safety cutoff|Kestrel released sleep protection so macOS can cool down normally.
kestrel.finished|Coding agents finished|Normal sleep behavior has been restored.
)");
  EXPECT_THAT(machine_.chime->heard(), testing::ElementsAre("Hero", "Hero", "Hero", "Hero", "Hero", "Hero"));
}

TEST_F(NotificationControllerTest, FollowsSettingsCentreAndSounds) {
  const auto outcome = [&](bool notifications, bool sound, bool centre, bool hasSounds) {
    const SimulatedPlatform machine = simulatedPlatform();
    SettingsStore settings(*machine.userDefaults, world_.clock);
    settings.setNotificationsEnabled(notifications);
    settings.setSoundEnabled(sound);
    machine.notifications->setAvailable(centre);
    machine.chime->setHasSounds(hasSounds);
    NotificationController(*machine.notifications, *machine.chime, settings, world_.sink)
        .notifyProtectionFinished();
    const auto& heard = machine.chime->heard();
    return std::to_string(machine.notifications->posted().size()) + (heard.empty() ? "" : heard[0]);
  };
  EXPECT_EQ(outcome(false, true, true, true), "0");
  EXPECT_EQ(outcome(true, false, true, true), "1");
  EXPECT_EQ(outcome(true, true, false, true), "0Hero");
  EXPECT_EQ(outcome(true, true, true, false), "1beep");
}

TEST_F(NotificationControllerTest, LogsWhatTheCentreAnswers) {
  controller_.requestAuthorization();
  machine_.notifications->setAnswer({false, "not signed"});
  controller_.requestAuthorization();
  machine_.notifications->setFailure("no answer");
  controller_.notifyThermalCutoff();
  machine_.notifications->setAvailable(false);
  controller_.requestAuthorization();
  EXPECT_THAT(machine_.notifications->requests(), testing::ElementsAre(7U, 7U));
  EXPECT_THAT(world_.sink->lines("notifications"),
              testing::ElementsAre("Notification permission granted: true",
                                   "Notification permission error: not signed",
                                   "Failed to post notification: no answer"));
}

constexpr std::uint64_t kOption = 0x80000, kCommand = 0x100000, kShiftAndControl = 0x60000;

struct GlobalShortcutControllerTest : testing::Test {
  TestWorld world_;
  SimulatedGlobalKeyMonitor keyboard_;
  GlobalShortcutController controller_{keyboard_, world_.sink};
};

TEST_F(GlobalShortcutControllerTest, TakesTheCombinationAndToleratesFurtherModifiers) {
  int toggles = 0;
  controller_.setOnToggleRequested([&] { ++toggles; });
  controller_.start();
  controller_.start();
  const std::pair<KeyPress, bool> cases[] = {{{37, kOption | kCommand}, true},
                                             {{37, kOption | kCommand | kShiftAndControl}, true},
                                             {{37, kOption | kShiftAndControl}, false},
                                             {{37, kCommand}, false},
                                             {{38, kOption | kCommand}, false}};
  for (const auto& [key, matches] : cases) {
    toggles = 0;
    keyboard_.pressElsewhere(key);
    EXPECT_EQ(toggles, matches ? 1 : 0);
    EXPECT_EQ(keyboard_.pressHere(key), matches);
    EXPECT_EQ(toggles, matches ? 2 : 0);
  }
}

TEST_F(GlobalShortcutControllerTest, MayBeStoppedByItsOwnCallbackAndClaimsNoRefusedMonitor) {
  controller_.setOnToggleRequested([this] { controller_.stop(); });
  controller_.start();
  EXPECT_TRUE(keyboard_.pressHere({37, kOption | kCommand}));
  EXPECT_FALSE(keyboard_.pressHere({37, kOption | kCommand}));
  keyboard_.setGrants(false);
  controller_.start();
  EXPECT_FALSE(controller_.isMonitoring());
  EXPECT_EQ(world_.sink->count("registered for Option+Command+L"), 1U);
  EXPECT_EQ(world_.sink->count("Local shortcut Option+Command+L triggered"), 1U);
}

TEST(LaunchAtLoginControllerTest, ChangesOnlyWhatIsNotSoAlready) {
  const std::tuple<int, const char*, bool, std::vector<std::string>> cases[] = {
      {0, "Not Registered", true, {"register"}}, {1, "Enabled", true, {}},
      {1, "Enabled", false, {"unregister"}},     {2, "Requires User Approval in System Settings", false, {}},
      {3, "App Not Found", true, {"register"}},  {7, "Unknown", false, {}}};
  for (const auto& [status, text, wanted, calls] : cases) {
    for (const bool fails : {false, true}) {
      const TestWorld world;
      SimulatedLoginItem item;
      item.set(status);
      if (fails) item.setFailure("the disk is full");
      LaunchAtLoginController controller(item, world.sink);
      EXPECT_EQ(controller.statusDescription(), text);
      EXPECT_EQ(controller.setEnabled(wanted), calls.empty() || !fails);
      EXPECT_EQ(item.calls(), calls);
      EXPECT_EQ(world.sink->count("Failed to update launch at login: the disk is full"),
                fails ? calls.size() : 0U);
    }
  }
}

}  // namespace
}  // namespace kestrel
