#pragma once

#include <QWidget>
#include <optional>

#include "KestrelCore/Presentation/TimelineBand.h"

namespace kestrel {

/// The last day as a band, time running in the direction of reading. Each piece tells its reason: to the
/// mouse in a tool tip, to the keyboard by the arrow keys, Home and End.
class TimelineBandView final : public QWidget {
 public:
  explicit TimelineBandView(QWidget* parent = nullptr);

  void setBand(TimelineBand band);
  /// The piece that the keyboard is at.
  [[nodiscard]] std::optional<std::size_t> selected() const { return selected_; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QRectF bandArea() const;
  [[nodiscard]] QRectF areaOf(const TimelineSegment& segment) const;
  void select(std::size_t index);
  void describe();
  void drawMarks(QPainter& painter) const;

  TimelineBand band_;
  std::optional<std::size_t> selected_;
};

}  // namespace kestrel
