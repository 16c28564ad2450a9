#include <QApplication>
#include <QFile>
#include <QImage>
#include <QTest>
#include <gmock/gmock.h>

#include "screenshots/ViewStage.h"
#include "tests/app/ViewTestSupport.h"

#include "KestrelApp/AgentSetupSheet.h"
#include "KestrelApp/AppIcon.h"
#include "KestrelApp/OnboardingView.h"
#include "KestrelApp/Widgets/PageDots.h"
#include "KestrelApp/Widgets/WrappedLabel.h"

namespace kestrel {
namespace {

class OnboardingViewTest : public testing::Test {
 protected:
  /// Opens it and goes on so many times.
  void showPage(int number) {
    view_.show();
    for (int i = 1; i < number; ++i) QTest::keyClick(&view_, Qt::Key_Return);
    EXPECT_EQ(childOf<PageDots>(view_)->accessibleName(), QString("Page %1 of 4").arg(number));
  }
  void click(const QString& text) { QTest::mouseClick(buttonIn(view_, text), Qt::LeftButton); }
  SettingsStore& settings() { return views_.stage().settings(); }

  ViewStage views_;
  OnboardingView view_{views_.context()};
};

TEST_F(OnboardingViewTest, IsDoneHoweverItIsLeft) {
  const struct {
    int page;
    std::function<void()> leave;
  } rows[] = {{1, [this] { QTest::keyClick(&view_, Qt::Key_Escape); }},
              {2, [this] { click("Skip"); }},
              {3, [this] { view_.close(); }},
              {4, [this] { QTest::keyClick(buttonIn(view_, "Done"), Qt::Key_Space); }}};
  for (const auto& [page, leave] : rows) {
    settings().setHasCompletedOnboarding(false);
    showPage(page);
    EXPECT_FALSE(settings().hasCompletedOnboarding());
    leave();
    EXPECT_TRUE(settings().hasCompletedOnboarding());
  }
}

TEST_F(OnboardingViewTest, SetsUpAgentsAndSwitchesNotificationsOn) {
  playInstalledAgents(views_);
  settings().setNotificationsEnabled(false);
  showPage(2);
  click("Set up…");
  EXPECT_EQ(childOf<AgentSetupSheet>(view_)->windowTitle(), "Set up Codex CLI");
  childOf<AgentSetupSheet>(view_)->close();
  click("Next");
  click("Switch on");
  EXPECT_TRUE(settings().notificationsEnabled());
}

TEST_F(OnboardingViewTest, ShowsAHoldArriveThroughTheRealSocket) {
  auto& stage = views_.stage();
  stage.machine().powerAssertions->setEvidence(
      std::vector<HoldEvidence>{{"login manager", HoldKind::idle, HoldEvidenceState::held, "1"}});
  stage.app().start();
  showPage(4);
  click("Send a test event");
  EXPECT_FALSE(buttonIn(view_, "Send a test event")->isEnabled());
  EXPECT_TRUE(QTest::qWaitFor([&] {
    stage.executor().advance(0.01);
    return std::ranges::any_of(childrenOf<WrappedLabel>(view_),
                               [](const auto* label) { return label->text().startsWith("It works"); });
  }));
}

TEST(AppIcon, IsTheOneInTheFolderOfIcons) {
  const QString folder = KESTREL_ICONS "/";
  QFile file(folder + "kestrel.svg");
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll().toStdString(), appIconSvg());
  for (const int side : kAppIconSides) {
    const QImage picture(folder + QStringLiteral("kestrel-%1.png").arg(side));
    EXPECT_EQ(picture.convertToFormat(QImage::Format_ARGB32), drawAppIcon(side)) << side;
  }
}

}  // namespace
}  // namespace kestrel
