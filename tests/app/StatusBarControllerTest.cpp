#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QSystemTrayIcon>

#include "tests/core/AppCoordinatorFixture.h"

#include "KestrelApp/StatusBarController.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"
#include "KestrelPlatform/Simulated/SimulatedTrayHost.h"

namespace kestrel {
namespace {

std::unique_ptr<QWidget> plainContent(StatusBarController&) {
  return std::make_unique<QLabel>(QStringLiteral("content"));
}

class StatusBarControllerTest : public AppCoordinatorFixture {
 protected:
  StatusBarControllerTest() { app_->start(); }

  void setUp(bool withHost = true) {
    if (withHost) host_.come();
    controller_.setup();
    executor_.runPending();
  }
  [[nodiscard]] QSystemTrayIcon& item() { return *controller_.statusItem(); }
  [[nodiscard]] std::string tooltip() { return item().toolTip().toStdString(); }
  [[nodiscard]] qint64 image() { return item().icon().cacheKey(); }
  /// What the icon would be of this state now, in the frame that it shows.
  [[nodiscard]] std::vector<qint64> frames(KestrelVisualState state, std::int64_t count,
                                           bool isDisabled = false) {
    std::vector<qint64> keys;
    for (int i = 0; i < 4; ++i)
      keys.push_back(renderer_.createStatusIcon(state, i, count, isDisabled).cacheKey());
    return keys;
  }
  /// How often the image changes in so many seconds.
  int changesIn(double seconds) {
    int changes = 0;
    for (double passed = 0; passed < seconds; passed += 0.01) {
      const qint64 before = image();
      executor_.advance(0.01);
      changes += image() == before ? 0 : 1;
    }
    return changes;
  }
  [[nodiscard]] std::vector<std::string> menu() {
    std::vector<std::string> labels;
    for (const QAction* action : item().contextMenu()->actions())
      labels.push_back(action->text().toStdString());
    return labels;
  }
  void choose(const std::string& label) {
    for (QAction* action : item().contextMenu()->actions()) {
      if (action->text().toStdString() != label) continue;
      action->trigger();
      executor_.runPending();
      return;
    }
    ADD_FAILURE() << "the menu has no " << label;
  }
  void click() {
    emit item().activated(QSystemTrayIcon::Trigger);
    executor_.runPending();
  }

  SimulatedTrayHost host_;
  KestrelBlobGlyphRenderer renderer_{KestrelBlobAvatarProvider::shared(), false};
  int quits_ = 0;
  StatusBarController controller_{{*app_,
                                   executor_,
                                   host_,
                                   DesktopTraits{},
                                   renderer_,
                                   Logger(world_.sink, "desktop"),
                                   {plainContent, plainContent, plainContent},
                                   [this] { ++quits_; }}};
};

TEST_F(StatusBarControllerTest, TellsTheDecisionAndTheFamilies) {
  setUp();
  EXPECT_EQ(tooltip(), "Kestrel: Ready — No active agent sessions");
  for (const char* id : {"a", "b", "c"}) hook(id, AgentState::working);
  EXPECT_THAT(tooltip(),
              testing::StartsWith("Kestrel: Awake (3 active) — Claude Code working\nClaude Code: "));
  settings_.setMasterEnabled(false);
  app_->evaluate();
  EXPECT_THAT(tooltip(), testing::StartsWith("Kestrel: Blocked — Master switch disabled"));
  EXPECT_EQ(image(), frames(KestrelVisualState::error, 3, true)[0]);
}

TEST_F(StatusBarControllerTest, AnimatesWhileThereIsSomethingToSeeAndKeepsTheRate) {
  setUp();
  EXPECT_EQ(changesIn(5), 0);
  hook("a", AgentState::working);
  EXPECT_NEAR(changesIn(2.2), 10, 1);
  hook("a", AgentState::waiting);
  EXPECT_NEAR(changesIn(2.2), 10, 1);  // Not the 0.45 s of waiting.
  EXPECT_THAT(frames(KestrelVisualState::waiting, 1), testing::Contains(image()));
  settings_.setReleaseDelaySeconds(0);
  hook("a", AgentState::idle);
  EXPECT_EQ(changesIn(5), 0);
  EXPECT_EQ(image(), frames(KestrelVisualState::idle, 0)[0]);
  hook("a", AgentState::waiting);
  EXPECT_NEAR(changesIn(4.5), 10, 1);  // A new timer has a new rate.
}

TEST_F(StatusBarControllerTest, ChangesSettingsFromTheMenu) {
  setUp();
  EXPECT_THAT(menu(), testing::ElementsAre("Kestrel — Ready: No active agent sessions", "", "Open Kestrel…",
                                           "", "Pause for 30 Minutes", "Pause for 1 Hour", "Disable Kestrel",
                                           "", "Settings…", "", "Quit Kestrel"));
  EXPECT_FALSE(item().contextMenu()->actions()[0]->isEnabled());
  choose("Pause for 30 Minutes");
  EXPECT_EQ(*settings_.pauseUntil() - world_.clock->now(), 1800);
  EXPECT_EQ(menu()[4], "Resume Protection");
  choose("Pause for 1 Hour");
  EXPECT_EQ(*settings_.pauseUntil() - world_.clock->now(), 3600);
  choose("Resume Protection");
  EXPECT_EQ(settings_.pauseUntil(), std::nullopt);
  EXPECT_EQ(menu()[4], "Pause for 30 Minutes");
  choose("Disable Kestrel");
  EXPECT_EQ(status(), "Safety blocked: Master switch disabled");
  choose("Enable Kestrel");
  EXPECT_TRUE(settings_.masterEnabled());
  choose("Quit Kestrel");
  EXPECT_EQ(quits_, 1);
}

TEST_F(StatusBarControllerTest, KeepsItemsThatOnlyChangeTheirText) {
  setUp();
  const auto before = item().contextMenu()->actions();
  hook("a", AgentState::working);
  EXPECT_EQ(menu()[0], "Kestrel — Awake: Claude Code working (1 active)");
  EXPECT_EQ(item().contextMenu()->actions(), before);
}

TEST_F(StatusBarControllerTest, FollowsItsHost) {
  setUp(false);
  EXPECT_EQ(controller_.statusItem(), nullptr);
  executor_.advance(4.9);
  EXPECT_EQ(controller_.appWindowController(), nullptr);
  executor_.advance(0.2);
  auto& window = controller_.appWindowController()->window();
  EXPECT_TRUE(window.isVisible());
  const auto* notice = window.findChild<QLabel*>();
  EXPECT_TRUE(notice->isVisible());
  hook("a", AgentState::working);  // Nobody looks.

  host_.come();
  EXPECT_TRUE(item().isVisible());
  EXPECT_FALSE(notice->isVisible());
  EXPECT_THAT(tooltip(), testing::StartsWith("Kestrel: Awake (1 active)"));
  EXPECT_NEAR(changesIn(2.2), 10, 1);
  host_.go();
  EXPECT_EQ(controller_.statusItem(), nullptr);
  executor_.advance(10);
  host_.come();
  EXPECT_NEAR(changesIn(2.2), 10, 1);
  choose("Disable Kestrel");
  EXPECT_FALSE(settings_.masterEnabled());
}

TEST_F(StatusBarControllerTest, TogglesThePopover) {
  setUp();
  EXPECT_EQ(controller_.popover(), nullptr);
  click();
  EXPECT_TRUE(controller_.popover()->isShown());
  click();
  EXPECT_FALSE(controller_.popover()->isShown());
  click();  // Still the click that closed it.
  EXPECT_FALSE(controller_.popover()->isShown());
  executor_.advance(0.3);
  click();
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(&controller_.popover()->window(), &escape);
  EXPECT_FALSE(controller_.popover()->isShown());
  executor_.advance(0.3);
  click();
  controller_.openAppShell();
  EXPECT_FALSE(controller_.popover()->isShown());
  QMainWindow* const window = &controller_.appWindowController()->window();
  window->close();
  controller_.openAppShell();
  EXPECT_EQ(&controller_.appWindowController()->window(), window);
  EXPECT_TRUE(window->isVisible());
}

TEST(StatusPopover, StaysOnTheScreen) {
  const QRect screen(0, 0, 1000, 800);
  const QSize size(350, 420);
  struct Case {
    QRect anchor;
    QPoint place;
  };
  for (const Case& each : {Case{{480, 0, 41, 30}, {325, 30}}, Case{{480, 770, 41, 30}, {325, 350}},
                           Case{{970, 770, 30, 30}, {650, 350}}, Case{{0, 0, 1, 1}, {0, 1}},
                           Case{{500, 390, 1, 1}, {325, 380}}}) {
    EXPECT_EQ(StatusPopover::placeBeside(each.anchor, size, screen), each.place) << each.anchor.x();
  }
  EXPECT_EQ(StatusPopover::placeBeside({50, 50, 1, 1}, size, {10, 20, 100, 100}), QPoint(10, 20));
}

}  // namespace
}  // namespace kestrel
