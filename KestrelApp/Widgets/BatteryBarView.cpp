#include "KestrelApp/Widgets/BatteryBarView.h"

#include <QPainter>
#include <QPainterPath>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/TimelineDrawing.h"
#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {
namespace {

constexpr int kBarHeight = Theme::kSpaceLarge;
/// How far the marks reach beyond the bar.
constexpr int kOverhang = Theme::kSpaceTiny;
constexpr double kMarkWidth = 2;

QColor fillOf(const Theme& theme, Tone tone) {
  return tone == Tone::normal ? theme.color(Theme::Role::accentArea) : theme.color(tone);
}

}  // namespace

BatteryBarView::BatteryBarView(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void BatteryBarView::setBar(const BatteryBar& bar) {
  if (bar_ == bar) return;
  bar_ = bar;
  setAccessibleName(displayText(bar.text));
  setAccessibleDescription(displayText(bar.explanation));
  setToolTip(toolTipText(displayText(bar.explanation)));
  update();
}

QSize BatteryBarView::sizeHint() const {
  return {16 * Theme::kSpaceLarge, kBarHeight + 2 * kOverhang};
}

QRectF BatteryBarView::part(double from, double to) const {
  QRectF area(from * width(), kOverhang, (to - from) * width(), kBarHeight);
  if (layoutDirection() == Qt::RightToLeft) area.moveRight(width() - area.left());
  return area;
}

void BatteryBarView::paintEvent(QPaintEvent*) {
  if (!bar_.level) return;
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath shape;
  shape.addRoundedRect(part(0, 1), Theme::kRadius, Theme::kRadius);
  painter.save();
  painter.setClipPath(shape);
  painter.fillRect(part(0, 1), theme.color(Theme::Role::track));
  painter.fillRect(part(0, *bar_.level), fillOf(theme, bar_.tone));
  drawHatching(painter, part(0, bar_.floor), theme.color(Theme::Role::surface));
  painter.restore();
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  const auto drawMark = [&](double position, Tone tone) {
    const QRectF edge = part(0, position);
    const double x = isMirrored ? edge.left() : edge.right();
    const QRectF mark(x - kMarkWidth / 2, 0, kMarkWidth, height());
    painter.fillRect(mark.adjusted(-1, 0, 1, 0), theme.color(Theme::Role::surface));
    painter.fillRect(mark, theme.color(tone));
  };
  drawMark(bar_.floor, Tone::bad);
  drawMark(bar_.resume, Tone::normal);
}

}  // namespace kestrel
