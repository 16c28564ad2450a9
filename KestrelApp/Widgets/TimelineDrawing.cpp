#include "KestrelApp/Widgets/TimelineDrawing.h"

#include <QColor>
#include <QLineF>
#include <QPainter>
#include <cmath>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr double kLineDistance = 6;
constexpr double kLineWidth = 2;

void drawGap(QPainter& painter, const Theme& theme, const QRectF& area) {
  // The dots of neighbours fall together, whatever the areas' ends.
  QPen pen(theme.color(Theme::Role::muted), kLineWidth, Qt::CustomDashLine, Qt::FlatCap);
  pen.setDashPattern({1, 3});
  pen.setDashOffset(area.left() / kLineWidth);
  painter.setPen(pen);
  painter.drawLine(QLineF(area.left(), area.center().y(), area.right(), area.center().y()));
}

}  // namespace

void drawHatching(QPainter& painter, const QRectF& area, const QColor& color) {
  painter.save();
  painter.setClipRect(area, Qt::IntersectClip);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(color, kLineWidth));
  const double first = std::floor((area.left() - area.height()) / kLineDistance) * kLineDistance;
  for (double x = first; x < area.right(); x += kLineDistance) {
    painter.drawLine(QLineF(x, area.bottom(), x + area.height(), area.top()));
  }
  painter.restore();
}

void drawTimelineArea(QPainter& painter, const Theme& theme, const QRectF& area, TimelineKind kind) {
  painter.save();
  switch (kind) {
    case TimelineKind::held:
      painter.fillRect(area, theme.color(Theme::Role::accentArea));
      break;
    case TimelineKind::released:
      painter.fillRect(area, theme.color(Theme::Role::track));
      break;
    case TimelineKind::blocked:
      painter.fillRect(area, theme.color(Theme::Role::bad));
      drawHatching(painter, area, theme.color(Theme::Role::surface));
      break;
    case TimelineKind::unknown:
      drawGap(painter, theme, area);
      break;
  }
  painter.restore();
}

}  // namespace kestrel
