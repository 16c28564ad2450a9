#pragma once

#include <QWidget>
#include <optional>

#include "KestrelCore/Presentation/BudgetModel.h"

namespace kestrel {

class BudgetGaugeView;
class ElidedLabel;
class IconView;

/// What is left for one agent.
class BudgetCardView final : public QWidget {
 public:
  explicit BudgetCardView(QWidget* parent = nullptr);

  void setCard(const BudgetCard& card);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<BudgetCard> shown_;
  IconView* icon_;
  ElidedLabel* name_;
  ElidedLabel* model_;
  BudgetGaugeView* context_;
  BudgetGaugeView* quota_;
  ElidedLabel* cost_;
  ElidedLabel* source_;
};

}  // namespace kestrel
