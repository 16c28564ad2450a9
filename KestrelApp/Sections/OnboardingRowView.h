#pragma once

#include <QWidget>
#include <functional>

class QPushButton;

namespace kestrel {

class ElidedLabel;
class IconView;
struct OnboardingRow;

/// An agent that was found, or a permission, with what can be done about it.
class OnboardingRowView final : public QWidget {
 public:
  explicit OnboardingRowView(std::function<void()> onAction, QWidget* parent = nullptr);

  void setRow(const OnboardingRow& row);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  IconView* icon_;
  ElidedLabel* title_;
  ElidedLabel* text_;
  QPushButton* action_;
};

}  // namespace kestrel
