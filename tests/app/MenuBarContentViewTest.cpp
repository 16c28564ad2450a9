#include <QAbstractButton>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>

#include "tests/app/WindowTest.h"

#include "KestrelApp/MenuBarContentView.h"
#include "KestrelApp/Widgets/ElidedLabel.h"

namespace kestrel {
namespace {

class MenuBarContentViewTest : public WindowTest {
 protected:
  MenuBarContentViewTest() {
    view_.onOpenShell = [this] { calls_ += "shell "; };
    view_.onOpenSettings = [this] { calls_ += "settings "; };
    view_.onSetUpAgents = [this] { calls_ += "agents "; };
    view_.onDismiss = [this] { calls_ += "dismiss "; };
  }
  void show() { WindowTest::show(view_); }
  template <typename Widget = QAbstractButton>
  Widget& find(const char* name) {
    auto* const found = view_.findChild<QWidget*>(name);
    EXPECT_NE(found, nullptr) << name;
    return static_cast<Widget&>(*found);
  }
  std::string text(const char* name) { return find<ElidedLabel>(name).text().toStdString(); }
  void click(const char* name) { QTest::mouseClick(&find(name), Qt::LeftButton); }
  /// Every setting that the popover may change.
  std::string settings() {
    auto& settings = stage_.settings();
    const auto pause = settings.pauseUntil();
    std::string all = settings.masterEnabled() ? "on" : "off";
    if (settings.manualHoldEnabled()) all += " manual";
    if (pause) all += " paused " + std::to_string(std::lround(*pause - stage_.clock().now()));
    return all;
  }
  /// Chooses an entry of the pause menu by its place.
  void choosePause(int entry) {
    static_cast<QPushButton&>(find("pause")).menu()->actions().at(entry)->trigger();
  }

  MenuBarContentView view_{views_.context()};
  std::string calls_;
};

TEST_F(MenuBarContentViewTest, EachControlChangesWhatItSaysAndNothingElse) {
  playTwoAgents(stage_);
  show();
  EXPECT_EQ(view_.size(), QSize(350, 420));
  struct Step {
    const char* name;
    std::function<void()> act;
    const char* settings;
    const char* headline;
    const char* calls;
  };
  const std::vector<Step> steps{
      {"keep awake", [&] { click("keepAwake"); }, "on manual", "Awake", ""},
      {"no longer", [&] { click("keepAwake"); }, "on", "Awake", ""},
      {"half an hour", [&] { choosePause(0); }, "on paused 1800", "Paused", ""},
      {"resume", [&] { click("resume"); }, "on", "Awake", ""},
      {"an hour", [&] { choosePause(1); }, "on paused 3600", "Paused", ""},
      {"resume by key", [&] { QTest::keyClick(&find("resume"), Qt::Key_Return); }, "on", "Awake", ""},
      {"switch off", [&] { click("master"); }, "off", "Blocked", ""},
      {"pause while off", [&] { click("keepAwake"); }, "off", "Blocked", ""},
      {"switch on by key", [&] { QTest::keyClick(&find("master"), Qt::Key_Space); }, "on", "Awake", ""},
      {"shell", [&] { click("open"); }, "on", "Awake", "shell "},
      {"settings", [&] { click("settings"); }, "on", "Awake", "settings "},
      {"escape", [&] { QTest::keyClick(&find("keepAwake"), Qt::Key_Escape); }, "on", "Awake", "dismiss "}};
  for (const auto& [name, act, settings, headline, calls] : steps) {
    calls_.clear();
    act();
    EXPECT_EQ(this->settings(), settings) << name;
    EXPECT_EQ(text("headline"), headline) << name;
    EXPECT_EQ(calls_, calls) << name;
    EXPECT_EQ(find("resume").isVisible(), text("headline") == "Paused") << name;
    EXPECT_EQ(find("pause").isVisible(), text("headline") != "Paused") << name;
  }
}

TEST_F(MenuBarContentViewTest, AControlWhoseChangeCouldNotBeKeptShowsWhatIs) {
  show();
  stage_.machine().userDefaults->failWrites(true);
  click("master");
  click("keepAwake");
  EXPECT_TRUE(find("master").isChecked());
  EXPECT_FALSE(find("keepAwake").isChecked());
  EXPECT_EQ(settings(), "on");
}

TEST_F(MenuBarContentViewTest, EverythingIsReachedByTabInOrder) {
  playTwoAgents(stage_);
  show();
  EXPECT_EQ(QApplication::focusWidget(), &view_) << "nothing is marked before a key is pressed";
  const QImage unmarked = view_.grab().toImage();
  std::string order;
  for (int i = 0; i < 9; ++i) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    const auto* focus = QApplication::focusWidget();
    order += focus->objectName().toStdString() + " ";
    EXPECT_NE(view_.grab().toImage(), unmarked) << "its ring shows";
  }
  EXPECT_EQ(order, "master claude codex cursor pause keepAwake open settings master ");
}

TEST_F(MenuBarContentViewTest, IsLiveOnlyWhileItCanBeSeen) {
  show();
  EXPECT_TRUE(find("setUpAgents").isVisible());
  click("setUpAgents");
  EXPECT_EQ(calls_, "agents ");
  EXPECT_EQ(text("headline"), "Ready");
  // Another process changes a setting.
  stage_.machine().userDefaults->changeFromOutside("masterEnabled", false);
  stage_.machine().userDefaults->fireOutsideChange();
  stage_.executor().runPending();
  EXPECT_EQ(text("headline"), "Ready") << "it was refreshed a moment ago";
  stage_.executor().advance(0.5);
  EXPECT_EQ(text("headline"), "Blocked");
  EXPECT_FALSE(find("master").isChecked());
  view_.hide();
  stage_.settings().setMasterEnabled(true);
  stage_.hook("c", AgentType::claude, AgentState::working);
  EXPECT_EQ(text("headline"), "Blocked") << "hidden, it rests";
  view_.show();
  EXPECT_EQ(text("headline"), "Awake");
  EXPECT_FALSE(find("setUpAgents").isVisible());
}

TEST_F(MenuBarContentViewTest, FocusScrollPositionAndMenuSurviveChanges) {
  playTwoHundredSessions(stage_);
  show();
  auto* const scrolled = view_.findChild<QScrollArea*>()->verticalScrollBar();
  ASSERT_GT(scrolled->maximum(), 100);
  QWidget& row = find<QWidget>("windsurf");
  row.setFocus();
  scrolled->setValue(120);
  auto* const menu = static_cast<QPushButton&>(find("pause")).menu();
  menu->popup({});
  stage_.hook("late", AgentType::claude, AgentState::waiting);
  stage_.report(reportOf(AgentType::codex, 10'000, 90, 1, stage_.clock().now()));
  stage_.clock().advance(60);
  evaluate();
  EXPECT_EQ(text("detail"), "for 13 min 04 s · lid hold on");
  EXPECT_EQ(&find<QWidget>("windsurf"), &row);
  EXPECT_EQ(view_.focusWidget(), &row);
  EXPECT_EQ(scrolled->value(), 120);
  EXPECT_TRUE(menu->isVisible());
  menu->close();
  // A family goes, and the others stay where they are.
  for (const auto& session : stage_.app().activeSessionsList().get()) {
    if (session->agentType == AgentType::gemini) stage_.app().agentCoordinator().removeSession(session->id);
  }
  evaluate();
  EXPECT_EQ(view_.findChild<QWidget*>("gemini"), nullptr);
  EXPECT_EQ(view_.focusWidget(), &row);
}

}  // namespace
}  // namespace kestrel
