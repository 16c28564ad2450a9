#pragma once

#include <QWidget>

namespace kestrel {

struct BudgetGauge;
class ElidedLabel;
class RingGauge;

/// A ring with what is left, and below it what that is, exactly and how sure.
class BudgetGaugeView final : public QWidget {
 public:
  explicit BudgetGaugeView(QWidget* parent = nullptr);

  void setGauge(const BudgetGauge& gauge);

 private:
  RingGauge* ring_;
  ElidedLabel* caption_;
  ElidedLabel* detail_;
  ElidedLabel* confidence_;
};

}  // namespace kestrel
