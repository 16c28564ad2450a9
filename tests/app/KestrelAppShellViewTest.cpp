#include <QSlider>
#include <QStackedWidget>
#include <cstdlib>

#include "tests/app/WindowTest.h"

#include "KestrelApp/KestrelAppShellView.h"
#include "KestrelApp/Sections/AlertCard.h"
#include "KestrelApp/Sections/SettingRowView.h"
#include "KestrelApp/Widgets/SidebarButton.h"
#include "KestrelApp/Widgets/TimelineBandView.h"

namespace kestrel {
namespace {

using Section = KestrelAppShellView::Section;

class KestrelAppShellViewTest : public WindowTest {
 protected:
  std::vector<SidebarButton*> entries() { return visible<SidebarButton>(view_); }
  std::size_t alerts() { return visible<AlertCard>(view_).size(); }

  KestrelAppShellView view_{views_.context()};
};

TEST_F(KestrelAppShellViewTest, SectionsAreReachedByKeyAndMouseAndMadeOnFirstUse) {
  show(view_);
  EXPECT_EQ(view_.size(), QSize(960, 640));
  ASSERT_EQ(entries().size(), 6U);
  const auto& stack = *view_.findChild<QStackedWidget*>();
  EXPECT_EQ(stack.count(), 1);
  for (int i = 5; i >= 0; --i) {
    QTest::keyClick(&view_, static_cast<Qt::Key>(Qt::Key_1 + i), Qt::ControlModifier);
    EXPECT_EQ(static_cast<int>(view_.section()), i);
    EXPECT_TRUE(entries()[static_cast<std::size_t>(i)]->isChecked()) << i;
  }
  QTest::mouseClick(entries()[3], Qt::LeftButton);
  EXPECT_EQ(view_.section(), Section::power);
  QTest::keyClick(entries()[3], Qt::Key_Down);
  view_.hide();
  view_.show();
  EXPECT_EQ(view_.section(), Section::budget) << "remembered";
  EXPECT_EQ(stack.count(), 6);
}

TEST_F(KestrelAppShellViewTest, TheTabKeyReachesEverythingAndEveryStopHasAName) {
  playInstalledAgents(views_);
  show(view_);
  for (int i = 0; i < 6; ++i) {
    view_.showSection(static_cast<Section>(i));
    evaluate();
    entries()[static_cast<std::size_t>(i)]->setFocus();
    // One entry of the sidebar, from which the arrow keys lead to the others.
    expectKeyboardReachesAll(view_, [](const QAbstractButton& button) {
      return dynamic_cast<const SidebarButton*>(&button) != nullptr;
    });
  }
}

// A control that has the keyboard follows like any other, and keeps it.
TEST_F(KestrelAppShellViewTest, TheSettingsOfThePowerSectionAreTheSameAndFollowWhatOthersChange) {
  show(view_);
  view_.showSection(Section::power);
  evaluate();
  auto& floor = *childOf<SettingRowView>(view_, "batteryFloorPercent")->findChild<QSlider*>();
  auto& onlyOnAC = *childOf<SettingRowView>(view_, "onlyOnAC")->findChild<QAbstractButton*>();
  floor.setFocus();
  QTest::keyClick(&floor, Qt::Key_Right);
  EXPECT_EQ(stage_.settings().batteryFloorPercent(), 16);
  stage_.settings().setBatteryFloorPercent(40);
  evaluate();
  EXPECT_TRUE(floor.hasFocus());
  QTest::keyClick(&floor, Qt::Key_Left);
  EXPECT_EQ(stage_.settings().batteryFloorPercent(), 39) << "from where it is now";
  onlyOnAC.setFocus();
  stage_.settings().setOnlyOnAC(true);
  evaluate();
  QTest::keyClick(&onlyOnAC, Qt::Key_Space);
  EXPECT_FALSE(stage_.settings().onlyOnAC());
}

TEST_F(KestrelAppShellViewTest, TheHoursFollowAnotherTimeZone) {
  ::setenv("TZ", "UTC", 1);
  show(view_);
  stage_.hook("c", AgentType::claude, AgentState::working);
  evaluate();
  auto* const band = visible<TimelineBandView>(view_).at(0);
  const auto hours = [&] {
    QTest::keyClick(band, Qt::Key_End);
    return band->accessibleDescription().section(u'(', 0, 0).toStdString();
  };
  const std::string before = hours();
  ::setenv("TZ", "Asia/Kolkata", 1);
  evaluate();
  EXPECT_NE(hours(), before);
  ::setenv("TZ", "UTC", 1);
  evaluate();
  EXPECT_EQ(hours(), before);
  ::unsetenv("TZ");
}

TEST_F(KestrelAppShellViewTest, AnAlertStaysAwayUntilItIsAnother) {
  playTwoAgents(stage_);
  const auto report = [&](double quotaLeft) {
    stage_.report(reportOf(AgentType::codex, 90'000, quotaLeft, 0.84, stage_.clock().now()));
    evaluate();
  };
  show(view_);
  report(12);
  ASSERT_EQ(alerts(), 1U);
  QTest::keyClick(visible<AlertCard>(view_)[0]->findChild<QPushButton*>(), Qt::Key_Space);
  report(11);
  EXPECT_EQ(alerts(), 0U) << "the same, dismissed";
  report(3);
  EXPECT_EQ(alerts(), 1U) << "worse";
}

TEST_F(KestrelAppShellViewTest, TheBandTellsItsPiecesToTheKeyboard) {
  show(view_);
  stage_.hook("c", AgentType::claude, AgentState::working);
  stage_.clock().advance(20);
  evaluate();
  auto* const band = visible<TimelineBandView>(view_).at(0);
  band->setFocus();
  const auto told = [&](Qt::Key key) {
    QTest::keyClick(band, key);
    return band->accessibleDescription().toStdString().substr(0, 7);
  };
  EXPECT_EQ(band->accessibleDescription().left(8), "Held for") << "all of it";
  EXPECT_EQ(told(Qt::Key_Home), "Unknown");
  EXPECT_EQ(told(Qt::Key_Left), "Unknown") << "the first";
  EXPECT_NE(told(Qt::Key_End), "Unknown");
  view_.setLayoutDirection(Qt::RightToLeft);
  for (std::size_t i = *band->selected(); i > 0; --i) told(Qt::Key_Right);
  EXPECT_EQ(band->selected(), 0U) << "time runs as one reads";
}

}  // namespace
}  // namespace kestrel
