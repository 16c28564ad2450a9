#pragma once

#include <QPointer>
#include <map>
#include <memory>
#include <string>

#include "KestrelApp/LiveView.h"

class QDialog;
class QFileDialog;
class QPushButton;

namespace kestrel {

class BudgetCardView;
class CardGridLayout;
class ElidedLabel;
class SessionTableView;
class StackedBarChart;
struct BudgetModel;

/// What is left for each agent, what was used by day, and by which session.
class BudgetSection final : public LiveView {
 public:
  explicit BudgetSection(ViewContext& context, QWidget* parent = nullptr);
  ~BudgetSection() override;

 protected:
  void refresh() override;
  void showEvent(QShowEvent* event) override;

 private:
  QLayout* makeHead();
  void showCards(const BudgetModel& model);
  void refreshSessions();
  void loadSessions();
  void askForExport();
  void askForReset();

  ElidedLabel* result_;
  QPushButton* export_;
  QPushButton* reset_;
  CardGridLayout* grid_;
  ElidedLabel* empty_;
  StackedBarChart* chart_;
  SessionTableView* sessions_;
  std::map<std::string, BudgetCardView*> cards_;
  QPointer<QDialog> question_;
  /// The recent sessions may differ from those in the table.
  bool haveSessionsChanged_ = true;
  bool isLoading_ = false;
  RegistrationPtr recentSessions_;
  const std::shared_ptr<int> alive_ = std::make_shared<int>();
};

}  // namespace kestrel
