#pragma once

#include <QWidget>
#include <functional>

#include "KestrelCore/Presentation/OverviewModel.h"

class QPushButton;

namespace kestrel {

class ElidedLabel;
class IconView;

/// Says that something runs low, until it is put away.
class AlertCard final : public QWidget {
 public:
  using Dismiss = std::function<void(const AlertKey&)>;
  explicit AlertCard(Dismiss onDismiss, QWidget* parent = nullptr);

  void setAlert(const OverviewAlert& alert);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  AlertKey key_;
  IconView* icon_;
  ElidedLabel* title_;
  ElidedLabel* detail_;
  QPushButton* dismiss_;
};

}  // namespace kestrel
