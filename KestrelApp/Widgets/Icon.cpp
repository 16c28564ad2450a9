#include "KestrelApp/Widgets/Icon.h"

#include <QColor>
#include <QIcon>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <vector>

namespace kestrel {
namespace {

/// The side of the square that the drawings are made in, and the width of their lines.
constexpr double kGrid = 16;
constexpr double kLine = 1.5;

/// What is stroked, and what is filled.
struct Drawing {
  std::vector<QPainterPath> lines;
  std::vector<QPainterPath> areas{};
};

QPainterPath polyline(std::initializer_list<QPointF> points, bool isClosed = false) {
  QPainterPath path(*points.begin());
  for (const auto* point = points.begin() + 1; point != points.end(); ++point) path.lineTo(*point);
  if (isClosed) path.closeSubpath();
  return path;
}

QPainterPath box(double x, double y, double width, double height, double radius) {
  QPainterPath path;
  path.addRoundedRect(QRectF(x, y, width, height), radius, radius);
  return path;
}

QPainterPath circle(double x, double y, double radius) {
  QPainterPath path;
  path.addEllipse(QPointF(x, y), radius, radius);
  return path;
}

/// Spokes around the centre, from one radius to another.
QPainterPath spokes(int count, double from, double to) {
  QPainterPath path;
  for (int i = 0; i < count; ++i) {
    const double angle = 2 * M_PI * i / count;
    path.moveTo(8 + from * std::cos(angle), 8 + from * std::sin(angle));
    path.lineTo(8 + to * std::cos(angle), 8 + to * std::sin(angle));
  }
  return path;
}

/// A star of four points with hollow sides.
QPainterPath sparkle(double x, double y, double radius) {
  QPainterPath path(QPointF(x, y - radius));
  path.quadTo(x, y, x + radius, y);
  path.quadTo(x, y, x, y + radius);
  path.quadTo(x, y, x - radius, y);
  path.quadTo(x, y, x, y - radius);
  return path;
}

QPainterPath boltShape() {
  return polyline({{9, 1.5}, {3.5, 9}, {7.5, 9}, {7, 14.5}, {12.5, 7}, {8.5, 7}}, true);
}

Drawing machineDrawing(Icon icon) {
  switch (icon) {
    case Icon::battery:
      return {{box(1.5, 4.5, 11, 7, 1.5), polyline({{14.5, 7}, {14.5, 9}})}, {box(3.5, 6.5, 5, 3, 0.5)}};
    case Icon::bolt:
      return {{}, {boltShape()}};
    case Icon::plug:
      return {{polyline({{6, 1.5}, {6, 5}}), polyline({{10, 1.5}, {10, 5}}), polyline({{8, 11}, {8, 14.5}}),
               polyline({{3.5, 5.5}, {12.5, 5.5}, {12.5, 7}, {10.5, 11}, {5.5, 11}, {3.5, 7}}, true)}};
    case Icon::thermometer: {
      QPainterPath bulb(QPointF(6.2, 9));
      bulb.lineTo(6.2, 3.3);
      bulb.arcTo(QRectF(6.2, 1.5, 3.6, 3.6), 180, -180);
      bulb.lineTo(9.8, 9);
      bulb.arcTo(QRectF(4.8, 8.1, 6.4, 6.4), 55, -290);
      return {{bulb}, {circle(8, 11.3, 1.6), box(7.4, 5.5, 1.2, 5, 0.5)}};
    }
    case Icon::laptop:
      return {{box(3, 3, 10, 7.5, 1.2), polyline({{1.2, 13}, {14.8, 13}})}};
    case Icon::leaf: {
      QPainterPath leaf(QPointF(13.5, 2.5));
      leaf.cubicTo(7, 2, 2.5, 5, 3.5, 10);
      leaf.cubicTo(4.5, 14, 13.5, 13.5, 13.5, 2.5);
      return {{leaf, polyline({{2, 14}, {4.5, 10.5}, {9.5, 6.5}})}};
    }
    default:
      return {};
  }
}

Drawing controlDrawing(Icon icon) {
  switch (icon) {
    case Icon::gear:
      return {{circle(8, 8, 2), circle(8, 8, 4.4), spokes(8, 4.8, 6.6)}};
    case Icon::pause:
      return {{}, {box(4, 3, 2.8, 10, 1), box(9.2, 3, 2.8, 10, 1)}};
    case Icon::play:
      return {{}, {polyline({{5, 3}, {12.5, 8}, {5, 13}}, true)}};
    case Icon::bell: {
      QPainterPath bell(QPointF(2.5, 11.5));
      bell.cubicTo(5, 9.5, 3, 2.5, 8, 2.5);
      bell.cubicTo(13, 2.5, 11, 9.5, 13.5, 11.5);
      bell.closeSubpath();
      return {{bell}, {box(6.5, 12.8, 3, 1.6, 0.8)}};
    }
    case Icon::chevronDown:
      return {{polyline({{4.5, 6.5}, {8, 10}, {11.5, 6.5}})}};
    case Icon::warning:
      return {{polyline({{8, 2}, {14.5, 13.5}, {1.5, 13.5}}, true), polyline({{8, 6.5}, {8, 9.2}})},
              {circle(8, 11.4, 0.9)}};
    case Icon::check:
      return {{polyline({{3, 8.5}, {6.5, 12}, {13, 4.5}})}};
    case Icon::close:
      return {{polyline({{4, 4}, {12, 12}}), polyline({{12, 4}, {4, 12}})}};
    default:
      return {};
  }
}

Drawing sectionDrawing(Icon icon) {
  switch (icon) {
    case Icon::overview:
      return {{box(2, 2, 5, 7, 1), box(9, 2, 5, 4, 1), box(2, 11, 5, 3, 1), box(9, 8, 5, 6, 1)}};
    case Icon::agents:
      return {{circle(8, 5, 2.8),
               polyline({{2.8, 14}, {3.4, 11.4}, {5.5, 10}, {10.5, 10}, {12.6, 11.4}, {13.2, 14}})}};
    case Icon::palette: {
      QPainterPath board(QPointF(8, 14));
      board.cubicTo(0, 14, 0, 2, 8, 2);
      board.cubicTo(13, 2, 15.5, 6, 14, 8.5);
      board.cubicTo(13, 10, 9.5, 8.5, 9.3, 10.5);
      board.cubicTo(9.2, 12, 10.5, 14, 8, 14);
      return {{board}, {circle(5, 6.2, 1), circle(8.6, 4.8, 1), circle(11.4, 6.6, 0.9), circle(4.8, 9.6, 1)}};
    }
    case Icon::power: {
      QPainterPath ring;
      ring.arcMoveTo(QRectF(2.5, 3, 11, 11), 125);
      ring.arcTo(QRectF(2.5, 3, 11, 11), 125, 290);
      return {{ring, polyline({{8, 1.5}, {8, 7.5}})}};
    }
    case Icon::chart:
      return {{polyline({{1.5, 14}, {14.5, 14}})},
              {box(3, 8, 2.4, 4.5, 0.5), box(6.8, 3, 2.4, 9.5, 0.5), box(10.6, 6, 2.4, 6.5, 0.5)}};
    default:
      return {};
  }
}

Drawing agentDrawing(Icon icon) {
  switch (icon) {
    case Icon::sparkles:
      return {{}, {sparkle(6.5, 9, 5.8), sparkle(12.8, 3.6, 3)}};
    case Icon::terminal:
      return {{box(1.5, 2.5, 13, 11, 2), polyline({{4.5, 6}, {6.8, 8}, {4.5, 10}}),
               polyline({{8.5, 10.4}, {11.5, 10.4}})}};
    case Icon::brackets:
      return {{polyline({{4.5, 4.5}, {1.3, 8}, {4.5, 11.5}}),
               polyline({{11.5, 4.5}, {14.7, 8}, {11.5, 11.5}}), polyline({{9.4, 3}, {6.6, 13}})}};
    case Icon::hexagon:
      return {{polyline({{8, 1.5}, {13.6, 4.75}, {13.6, 11.25}, {8, 14.5}, {2.4, 11.25}, {2.4, 4.75}}, true)},
              {circle(8, 8, 2)}};
    case Icon::cursor:
      return {{polyline({{3, 2.5}, {13.5, 7}, {9, 9}, {7, 13.5}}, true)}};
    case Icon::wind: {
      QPainterPath upper(QPointF(1.5, 6.5));
      upper.lineTo(9.5, 6.5);
      upper.arcTo(QRectF(7.5, 2.5, 4, 4), 270, 240);
      QPainterPath lower(QPointF(1.5, 9.5));
      lower.lineTo(11.5, 9.5);
      lower.arcTo(QRectF(9.5, 9.5, 4, 4), 90, -240);
      return {{upper, lower}};
    }
    case Icon::wrench:
      return {{polyline({{10.5, 2},
                         {9.2, 3.4},
                         {9.6, 6.4},
                         {12.6, 6.8},
                         {14, 5.5},
                         {13.4, 9},
                         {10, 9.6},
                         {4.8, 14},
                         {2, 11.2},
                         {6.4, 6},
                         {7, 2.6}},
                        true)}};
    case Icon::chip:
      return {{box(4, 4, 8, 8, 1), polyline({{6.5, 1.5}, {6.5, 4}}), polyline({{9.5, 1.5}, {9.5, 4}}),
               polyline({{6.5, 12}, {6.5, 14.5}}), polyline({{9.5, 12}, {9.5, 14.5}}),
               polyline({{1.5, 6.5}, {4, 6.5}}), polyline({{1.5, 9.5}, {4, 9.5}}),
               polyline({{12, 6.5}, {14.5, 6.5}}), polyline({{12, 9.5}, {14.5, 9.5}})},
              {box(6.4, 6.4, 3.2, 3.2, 0.5)}};
    default:
      return {};
  }
}

Drawing drawingOf(Icon icon) {
  if (icon < Icon::gear) return machineDrawing(icon);
  if (icon < Icon::overview) return controlDrawing(icon);
  if (icon < Icon::sparkles) return sectionDrawing(icon);
  return agentDrawing(icon);
}

class IconEngine final : public QIconEngine {
 public:
  IconEngine(Icon icon, const QColor& color) : icon_(icon), color_(color) {}

  void paint(QPainter* painter, const QRect& area, QIcon::Mode mode, QIcon::State) override {
    painter->save();
    if (mode == QIcon::Disabled) painter->setOpacity(painter->opacity() / 2);
    drawIcon(*painter, area, icon_, color_);
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect({}, size), mode, state);
    return pixmap;
  }
  [[nodiscard]] QIconEngine* clone() const override { return new IconEngine(*this); }

 private:
  Icon icon_;
  QColor color_;
};

}  // namespace

Icon agentIcon(AgentType agent) {
  constexpr std::array<Icon, 9> kIcons{Icon::sparkles, Icon::terminal, Icon::bolt,
                                       Icon::brackets, Icon::hexagon,  Icon::cursor,
                                       Icon::wind,     Icon::wrench,   Icon::chip};
  return kIcons[static_cast<std::size_t>(agent)];
}

void drawIcon(QPainter& painter, const QRectF& area, Icon icon, const QColor& color) {
  const double scale = std::min(area.width(), area.height()) / kGrid;
  const Drawing drawing = drawingOf(icon);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(area.center());
  painter.scale(scale, scale);
  painter.translate(-kGrid / 2, -kGrid / 2);
  const QPen pen(color, kLine, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
  for (const QPainterPath& path : drawing.lines) painter.strokePath(path, pen);
  for (const QPainterPath& path : drawing.areas) painter.fillPath(path, color);
  painter.restore();
}

QIcon makeIcon(Icon icon, const QColor& color) {
  return QIcon(new IconEngine(icon, color));
}

}  // namespace kestrel
