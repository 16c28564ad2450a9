#include "KestrelApp/Widgets/TimelineSwatch.h"

#include <QPainter>
#include <QPainterPath>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/TimelineDrawing.h"

namespace kestrel {

TimelineSwatch::TimelineSwatch(TimelineKind kind, QWidget* parent) : QWidget(parent), kind_(kind) {
  setFixedSize(Theme::kSmallIconSize, Theme::kSmallIconSize);
}

void TimelineSwatch::setKind(TimelineKind kind) {
  if (kind_ == kind) return;
  kind_ = kind;
  update();
}

void TimelineSwatch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QPainterPath shape;
  shape.addRoundedRect(rect(), Theme::kSpaceTiny - 1, Theme::kSpaceTiny - 1);
  painter.setClipPath(shape);
  drawTimelineArea(painter, Theme::of(*this), rect(), kind_);
}

}  // namespace kestrel
