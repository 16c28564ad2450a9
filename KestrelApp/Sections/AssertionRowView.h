#pragma once

#include <QWidget>

namespace kestrel {

class Badge;
class ElidedLabel;
struct AssertionRow;

/// What one service was asked for, what for, and what it says.
class AssertionRowView final : public QWidget {
 public:
  explicit AssertionRowView(QWidget* parent = nullptr);

  void setRow(const AssertionRow& row);

 private:
  ElidedLabel* service_;
  ElidedLabel* detail_;
  Badge* state_;
};

}  // namespace kestrel
