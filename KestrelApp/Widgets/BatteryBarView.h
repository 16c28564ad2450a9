#pragma once

#include <QWidget>

#include "KestrelCore/Presentation/PowerModel.h"

namespace kestrel {

/// The battery's level on one bar with the part in which protection stops, hatched, and the part above it up
/// to where it begins again. Without a reading there is no bar, and nothing is drawn.
class BatteryBarView final : public QWidget {
 public:
  explicit BatteryBarView(QWidget* parent = nullptr);

  void setBar(const BatteryBar& bar);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  /// From one part of the bar to another.
  [[nodiscard]] QRectF part(double from, double to) const;

  BatteryBar bar_;
};

}  // namespace kestrel
