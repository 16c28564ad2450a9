#pragma once

#include <QWidget>
#include <cstddef>
#include <optional>

#include "KestrelCore/Presentation/TokenChart.h"

namespace kestrel {

/// A bar for each day, stacked by agent, with a legend. The mouse, or the arrow keys, choose a bar, whose
/// exact values are then shown and read aloud.
class StackedBarChart final : public QWidget {
 public:
  explicit StackedBarChart(QWidget* parent = nullptr);

  void setChart(TokenChart chart);
  /// The bar whose values are shown.
  [[nodiscard]] std::optional<std::size_t> current() const { return current_; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// Where the bars stand, without axis, labels and legend.
  [[nodiscard]] QRect plot() const;
  /// A day's whole column in the plot.
  [[nodiscard]] QRectF column(std::size_t index) const;
  [[nodiscard]] std::optional<std::size_t> barAt(const QPointF& position) const;
  void select(std::optional<std::size_t> bar);
  void showValues();
  void paintAxis(QPainter& painter) const;
  void paintBar(QPainter& painter, std::size_t index) const;
  void paintLabel(QPainter& painter, std::size_t index) const;
  void paintLegend(QPainter& painter) const;

  TokenChart chart_;
  std::optional<std::size_t> current_;
};

}  // namespace kestrel
