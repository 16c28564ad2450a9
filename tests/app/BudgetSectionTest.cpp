#include <QAbstractItemModelTester>
#include <QFileDialog>
#include <QHeaderView>
#include <QMessageBox>
#include <QTest>
#include <fmt/format.h>
#include <gmock/gmock.h>

#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"
#include "tests/app/ViewTestSupport.h"

#include "KestrelApp/Sections/BudgetSection.h"
#include "KestrelApp/Sections/SessionTableModel.h"
#include "KestrelApp/Sections/SessionTableView.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/StackedBarChart.h"

namespace kestrel {
namespace {

SessionUsageRecord record(int number, double lastActive) {
  SessionUsageRecord record;
  record.id = fmt::format("s{}", number);
  record.lastActiveAt = Date::sinceReferenceDate(lastActive);
  return record;
}

/// The session that a row of the model stands for.
std::string idOf(const QModelIndex& index) {
  const QString tip = index.data(Qt::ToolTipRole).toString();
  return tip.mid(4, tip.indexOf("<br>") - 4).toStdString();
}

TEST(SessionTableModel, KeepsReferencesToSessionsWhereverTheyMove) {
  const ManualClock clock;
  SessionTableModel model(clock);
  const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  model.load({record(1, 10)});
  const QPersistentModelIndex followed = model.index(0, 0);
  // The newest come first, so the only row moves behind what was the end.
  EXPECT_FALSE(model.refresh({record(3, 30), record(2, 20)})) << "all of them are new";
  EXPECT_EQ(followed.row(), 2);
  std::vector<SessionUsageRecord> many;
  for (int i = 0; i < 10'000; ++i) many.push_back(record(i, 100'000 + i));
  model.load(many);
  EXPECT_EQ(followed.row(), 9998);
  EXPECT_TRUE(model.refresh({}));
  EXPECT_FALSE(followed.isValid());
}

class BudgetSectionTest : public testing::Test {
 protected:
  BudgetSectionTest() {
    playTwoAgents(views_.stage());
    section_.resize(760, 900);
    section_.show();
    settle();
  }
  void settle() {
    views_.stage().settle();
    views_.stage().executor().advance(1);
    layOut();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  [[nodiscard]] int rows() const { return table_->model()->rowCount(); }

  ViewStage views_;
  BudgetSection section_{views_.context()};
  SessionTableView* table_ = childOf<SessionTableView>(section_);
};

TEST_F(BudgetSectionTest, SortsByMouseAndByKeysAndTakesInNewSessions) {
  table_->selectRow(4);
  const std::string selected = idOf(table_->currentIndex());
  views_.stage().use(AgentType::gemini, 5000, 0.1, 0, "new");
  settle();
  EXPECT_EQ(table_->selectionModel()->selectedRows().value(0).row(), 5);
  EXPECT_EQ(idOf(table_->currentIndex()), selected);

  QHeaderView* header = table_->horizontalHeader();
  const int tokens = static_cast<int>(SessionColumn::tokens);
  const QPoint title(header->sectionViewportPosition(tokens) + 20, header->height() / 2);
  QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, title);
  const auto isLeastFirst = [&] { return idOf(table_->model()->index(0, 0)) == "new"; };
  QTest::keyClick(table_, Qt::Key_Up, Qt::ControlModifier);
  EXPECT_TRUE(isLeastFirst());
  QTest::keyClick(table_, Qt::Key_Down, Qt::ControlModifier);
  EXPECT_FALSE(isLeastFirst());
}

TEST_F(BudgetSectionTest, AsksBeforeItForgets) {
  for (const bool isMeant : {false, true}) {
    QTest::keyClick(buttonIn(section_, "Reset…"), Qt::Key_Space);
    auto* question = section_.findChild<QMessageBox*>();
    EXPECT_TRUE(question->informativeText().contains("cannot be brought back"));
    isMeant ? QTest::mouseClick(buttonIn(*question, "Reset"), Qt::LeftButton)
            : QTest::keyClick(question, Qt::Key_Return);
    settle();
    EXPECT_EQ(rows(), isMeant ? 0 : 5);
  }
}

TEST_F(BudgetSectionTest, SavesWhereOneChoosesAndSaysHowItWent) {
  const QString home = QString::fromStdString(views_.stage().app().directories().home.string());
  const struct {
    QString file;
    QString said;
  } rows[] = {{home + "/u.json", "Saved as " + home + "/u.json"},
              {home + "/u.json/below-a-file.json", "Nothing was saved"}};
  for (const auto& [file, said] : rows) {
    QTest::mouseClick(buttonIn(section_, "Export…"), Qt::LeftButton);
    emit section_.findChild<QFileDialog*>()->fileSelected(file);
    EXPECT_TRUE(QTest::qWaitFor([&] {
      settle();
      return childOf<ElidedLabel>(section_, "result")->text().startsWith(said);
    })) << childOf<ElidedLabel>(section_, "result")->text().toStdString();
    EXPECT_EQ(QFile::exists(file), said.startsWith("Saved"));
  }
}

TEST_F(BudgetSectionTest, TenThousandSessionsScrollInAPlaceOfTheirOwn) {
  const int before = table_->height();
  std::vector<SessionUsageRecord> many;
  for (int i = 0; i < 10'000; ++i) many.push_back(record(i, 1000 + i));
  table_->sessions().load(many);
  table_->fitHeight();
  table_->selectRow(0);
  QTest::keyClick(table_, Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(idOf(table_->currentIndex()), "s0") << "the oldest";
  EXPECT_TRUE(table_->viewport()->rect().contains(table_->visualRect(table_->currentIndex()).center()));
  QTest::keyClick(table_, Qt::Key_Up, Qt::ControlModifier);
  EXPECT_EQ(idOf(table_->model()->index(0, 0)), "s0");
  EXPECT_LT(table_->height(), 3 * before);
}

TEST_F(BudgetSectionTest, TellsTheValuesOfADayByMouseAndByKeys) {
  auto* chart = childOf<StackedBarChart>(section_);
  const struct {
    Qt::Key key;
    Qt::LayoutDirection direction;
    std::size_t expected;
  } rows[] = {{Qt::Key_End, Qt::LeftToRight, 13},   {Qt::Key_Right, Qt::LeftToRight, 13},
              {Qt::Key_Left, Qt::LeftToRight, 12},  {Qt::Key_Left, Qt::RightToLeft, 13},
              {Qt::Key_Right, Qt::RightToLeft, 12}, {Qt::Key_Home, Qt::RightToLeft, 0}};
  for (const auto& [key, direction, expected] : rows) {
    chart->setLayoutDirection(direction);
    QTest::keyClick(chart, key);
    EXPECT_EQ(chart->current(), expected);
    EXPECT_TRUE(chart->accessibleDescription().contains(expected == 13 ? "Claude Code: " : "No tokens"));
  }
  QTest::mouseMove(chart, QPoint(4, chart->height() / 2));
  EXPECT_EQ(chart->current(), 13U);
}

}  // namespace
}  // namespace kestrel
