#include "KestrelApp/Widgets/TimelineBandView.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/TimelineDrawing.h"
#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {
namespace {

constexpr int kBandHeight = 7 * Theme::kSpaceTiny;
constexpr int kTickHeight = Theme::kSpaceTiny;
/// Room for the focus ring.
constexpr int kMargin = Theme::kSpaceTiny;
/// What was short shows all the same.
constexpr double kLeastWidth = 2;

}  // namespace

TimelineBandView::TimelineBandView(QWidget* parent) : QWidget(parent) {
  setFont(Theme::font(Theme::TextStyle::caption));
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void TimelineBandView::setBand(TimelineBand band) {
  if (band_ == band) return;
  band_ = std::move(band);
  if (selected_ && *selected_ >= band_.segments.size()) selected_.reset();
  describe();
  update();
}

void TimelineBandView::describe() {
  const std::string& text = selected_ ? band_.segments[*selected_].tooltip : band_.description;
  if (accessibleDescription() == displayText(text)) return;
  setAccessibleDescription(displayText(text));
  QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&changed);
}

QSize TimelineBandView::sizeHint() const {
  const int height = 2 * kMargin + kBandHeight + kTickHeight + QFontMetrics(font()).height();
  return {16 * Theme::kSpaceLarge, height};
}

QRectF TimelineBandView::bandArea() const {
  return QRectF(0, kMargin, width(), kBandHeight);
}

QRectF TimelineBandView::areaOf(const TimelineSegment& segment) const {
  const QRectF band = bandArea();
  const double width = std::max(segment.width * band.width(), kLeastWidth);
  QRectF area(segment.start * band.width(), band.top(), width, band.height());
  if (layoutDirection() == Qt::RightToLeft) area.moveRight(band.width() - area.left());
  return area;
}

bool TimelineBandView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  // The last one is on top.
  for (auto segment = band_.segments.rbegin(); segment != band_.segments.rend(); ++segment) {
    const QRectF area = areaOf(*segment);
    if (!area.contains(help->pos())) continue;
    QToolTip::showText(help->globalPos(), toolTipText(displayText(segment->tooltip)), this,
                       area.toAlignedRect());
    return true;
  }
  QToolTip::hideText();
  return true;
}

void TimelineBandView::select(std::size_t index) {
  selected_ = index;
  describe();
  update();
  const TimelineSegment& segment = band_.segments[index];
  QToolTip::showText(mapToGlobal(areaOf(segment).bottomLeft().toPoint()),
                     toolTipText(displayText(segment.tooltip)), this);
}

void TimelineBandView::keyPressEvent(QKeyEvent* event) {
  const std::size_t count = band_.segments.size();
  const bool isMirrored = layoutDirection() == Qt::RightToLeft;
  if (count == 0) return QWidget::keyPressEvent(event);
  const std::size_t last = count - 1;
  if (event->key() == Qt::Key_Home) return select(0);
  if (event->key() == Qt::Key_End) return select(last);
  if (event->key() == (isMirrored ? Qt::Key_Right : Qt::Key_Left)) {
    return select(selected_ ? std::max<std::size_t>(*selected_, 1) - 1 : last);
  }
  if (event->key() == (isMirrored ? Qt::Key_Left : Qt::Key_Right)) {
    return select(selected_ ? std::min(*selected_ + 1, last) : last);
  }
  QWidget::keyPressEvent(event);
}

void TimelineBandView::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  selected_.reset();
  describe();
  update();
}

void TimelineBandView::drawMarks(QPainter& painter) const {
  const Theme& theme = Theme::of(*this);
  const QFontMetrics metrics(font());
  const double top = bandArea().bottom() + kTickHeight;
  painter.setPen(theme.color(Theme::Role::muted));
  for (const TimelineMark& mark : band_.marks) {
    const QString text = displayText(mark.text);
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const double x = (isMirrored ? 1 - mark.position : mark.position) * width();
    const double textWidth = metrics.horizontalAdvance(text) + 1;
    const double left = std::clamp(x - textWidth / 2, 0.0, std::max(width() - textWidth, 0.0));
    painter.drawText(QRectF(left, top, textWidth, metrics.height()), Qt::AlignCenter, text);
    const double tick = std::clamp(x, 0.5, width() - 0.5);
    painter.drawLine(QLineF(tick, bandArea().bottom() + 1, tick, top));
  }
}

void TimelineBandView::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setFont(font());
  QPainterPath shape;
  shape.addRoundedRect(bandArea(), Theme::kRadius, Theme::kRadius);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipPath(shape);
  for (const TimelineSegment& segment : band_.segments) {
    drawTimelineArea(painter, theme, areaOf(segment), segment.kind);
  }
  painter.restore();
  drawMarks(painter);
  if (!hasFocus()) return;
  const QRectF ringed = selected_ ? areaOf(band_.segments[*selected_]) : bandArea();
  const double out = kMargin - 1;
  theme.drawFocusRing(painter, ringed.adjusted(selected_ ? -out : 0, -out, selected_ ? out : 0, out),
                      Theme::kRadius);
}

}  // namespace kestrel
