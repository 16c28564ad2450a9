#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QTest>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <random>

#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"
#include "tests/app/ViewTestSupport.h"

#include "KestrelApp/AgentSetupSheet.h"
#include "KestrelApp/Sections/AgentCardView.h"
#include "KestrelApp/Sections/AgentSessionTreeModel.h"
#include "KestrelApp/Sections/AgentSessionTreeView.h"
#include "KestrelApp/Sections/AgentsSection.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelCore/Presentation/AgentSetupModel.h"

namespace kestrel {
namespace {

class AgentsSectionTest : public testing::Test {
 protected:
  AgentsSectionTest() { section_.resize(760, 640); }
  Stage& stage() { return views_.stage(); }
  /// Another moment, in which everything is shown that happened before it.
  void passTime() {
    stage().executor().advance(1);
    stage().app().evaluate();
    stage().executor().advance(1);
    layOut();
  }
  AgentCardView* card(const QString& agent) { return childOf<AgentCardView>(section_, agent); }
  void start(int first, int count) {
    for (int i = first; i < first + count; ++i) {
      stage().clock().advance(1);
      stage().hook(fmt::format("s{}", i), AgentType::claude, AgentState::working, "/home/u/p");
    }
    passTime();
  }

  ViewStage views_;
  AgentsSection section_{views_.context()};
};

TEST_F(AgentsSectionTest, KeepsWhatIsSelectedOpenAndInSightWhileSessionsComeAndGo) {
  section_.show();
  start(0, 30);
  auto& view = *childOf<AgentSessionTreeView>(*card("claude"));
  const auto keyAt = [&view](const QModelIndex& index) { return view.sessions().session(index)->key; };
  const QModelIndex host = view.model()->index(0, 0);
  view.scrollTo(view.model()->index(20, 0, host), QAbstractItemView::PositionAtTop);
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(80, 60));
  const std::string selected = keyAt(view.currentIndex());
  const std::string top = keyAt(view.indexAt(QPoint(60, 0)));
  start(30, 5);
  stage().app().agentCoordinator().removeSession("s28");
  passTime();
  EXPECT_EQ(keyAt(view.currentIndex()), selected);
  EXPECT_EQ(keyAt(view.indexAt(QPoint(60, 0))), top);

  view.setCurrentIndex(host);
  QTest::keyClick(&view, Qt::Key_Left);
  start(35, 2);
  EXPECT_LT(view.height(), 40);
  QTest::keyClick(&view, Qt::Key_Right);
  start(40, 1);
  // All of it fits its card, and the card its place.
  EXPECT_TRUE(card("claude")->rect().contains(view.geometry()));
}

TEST(AgentSessionTreeModel, FollowsAnyChangeAndKeepsReferencesToRows) {
  std::mt19937 random(7);  // NOLINT(cert-msc51-cpp): the same changes at each run
  AgentSessionTreeModel model;
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  QPersistentModelIndex followed;
  for (int round = 0; round < 200; ++round) {
    std::vector<AgentHostRow> hosts;
    for (int host = 0; host < 4; ++host) {
      if (random() % 3 == 0) continue;
      hosts.push_back({fmt::format("h{}", host), "name", {}});
      for (int i = 0; i < 8; ++i) {
        hosts.back().sessions.emplace_back().key = fmt::format("h{}s{}", host, i);
        if (random() % 2 == 0) hosts.back().sessions.pop_back();
      }
      std::shuffle(hosts.back().sessions.begin(), hosts.back().sessions.end(), random);
    }
    std::shuffle(hosts.begin(), hosts.end(), random);
    const std::string key = followed.isValid() ? model.session(followed)->key : "";
    model.setHosts(hosts);
    EXPECT_EQ(followed.isValid() ? model.session(followed)->key : key, key);
    ASSERT_EQ(model.rowCount({}), static_cast<int>(hosts.size()));
    for (std::size_t i = 0; i < hosts.size(); ++i) {
      const QModelIndex host = model.index(static_cast<int>(i), 0, {});
      ASSERT_EQ(*model.host(host), hosts[i]);
      if (!followed.isValid() && !hosts[i].sessions.empty()) followed = model.index(0, 0, host);
    }
  }
}

TEST_F(AgentsSectionTest, ChecksAgainAndSaysHowAnAgentIsSetUp) {
  playInstalledAgents(views_);
  section_.show();
  views_.install("gemini", "0.9");
  QTest::keyClick(buttonIn(section_, "Check again"), Qt::Key_Space);
  EXPECT_FALSE(buttonIn(section_, "Check again")->isEnabled());
  views_.inspect();
  passTime();
  EXPECT_TRUE(card("gemini")->accessibleDescription().contains("Installed (Hooks not configured)"));
  views_.writeHome(".claude/settings.json", "{}");
  QTest::mouseClick(buttonIn(*card("claude"), "Set up…"), Qt::LeftButton);
  auto* sheet = childOf<AgentSetupSheet>(section_);
  QTest::keyClick(buttonIn(*sheet, "Classic"), Qt::Key_Space);
  QTest::keyClick(buttonIn(*sheet, "Copy"), Qt::Key_Space);
  const auto model = agentSetupModel(views_.context().inspection, AgentType::claude);
  EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), model.snippets.back().text);
  const auto* status = childOf<ElidedLabel>(*sheet, "status");
  EXPECT_TRUE(status->text().startsWith("Hook active")) << "as of the last check";
  QTest::keyClick(buttonIn(*sheet, "Check again"), Qt::Key_Space);
  EXPECT_FALSE(buttonIn(*sheet, "Check again")->isEnabled());
  views_.inspect();
  EXPECT_TRUE(status->text().startsWith("Installed (Hooks not configured)")) << status->text().toStdString();
  QTest::keyClick(buttonIn(*sheet, "Close"), Qt::Key_Space);
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  views_.inspect();
}

}  // namespace
}  // namespace kestrel
