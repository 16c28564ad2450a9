#include "KestrelApp/Widgets/StackedBarChart.h"

#include <QAccessible>
#include <QColor>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {
namespace {

constexpr int kPlotHeight = 5 * Theme::kSpaceHuge;
constexpr int kSwatch = Theme::kSpaceSmall;
/// Of a column, the part that its bar takes.
constexpr double kBarPart = 0.64;
constexpr int kWidestBar = 2 * Theme::kSpaceHuge;
/// Between the pieces of a bar, so that it is not hues alone that set them apart.
constexpr double kPieceGap = 1;
constexpr double kLeastPiece = 2;

int lineHeight() {
  return QFontMetrics(Theme::font(Theme::TextStyle::caption)).height();
}

}  // namespace

StackedBarChart::StackedBarChart(QWidget* parent) : QWidget(parent) {
  setFont(Theme::font(Theme::TextStyle::caption));
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void StackedBarChart::setChart(TokenChart chart) {
  if (chart == chart_) return;
  chart_ = std::move(chart);
  if (current_ && *current_ >= chart_.bars.size()) current_.reset();
  setAccessibleName(displayText(chart_.description));
  if (current_) setAccessibleDescription(displayText(chart_.bars[*current_].tooltip));
  update();
}

QSize StackedBarChart::sizeHint() const {
  // The legend, the plot, the labels.
  const int height = lineHeight() + Theme::kSpaceSmall + kPlotHeight + Theme::kSpaceTiny + lineHeight();
  return {20 * Theme::kSpaceHuge, height};
}

QSize StackedBarChart::minimumSizeHint() const {
  return {8 * Theme::kSpaceHuge, sizeHint().height()};
}

QRect StackedBarChart::plot() const {
  const int top = lineHeight() + Theme::kSpaceSmall;
  const int bottom = height() - lineHeight() - Theme::kSpaceTiny;
  return {0, top, width(), std::max(bottom - top, 1)};
}

QRectF StackedBarChart::column(std::size_t index) const {
  const QRectF area = plot();
  const double step = area.width() / static_cast<double>(chart_.bars.size());
  const auto place = layoutDirection() == Qt::RightToLeft ? chart_.bars.size() - 1 - index : index;
  return {area.left() + step * static_cast<double>(place), area.top(), step, area.height()};
}

std::optional<std::size_t> StackedBarChart::barAt(const QPointF& position) const {
  for (std::size_t i = 0; i < chart_.bars.size() && chart_.emptyText.empty(); ++i) {
    const QRectF area = column(i);
    if (position.x() >= area.left() && position.x() < area.right() && position.y() >= area.top()) return i;
  }
  return std::nullopt;
}

void StackedBarChart::select(std::optional<std::size_t> bar) {
  if (bar == current_) return;
  current_ = bar;
  setAccessibleDescription(bar ? displayText(chart_.bars[*bar].tooltip) : QString());
  QAccessibleEvent change(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&change);
  update();
}

void StackedBarChart::showValues() {
  if (!current_) return QToolTip::hideText();
  const QRectF area = column(*current_);
  const QPoint place(static_cast<int>(area.center().x()), static_cast<int>(area.center().y()));
  QToolTip::showText(mapToGlobal(place), toolTipText(displayText(chart_.bars[*current_].tooltip)), this);
}

bool StackedBarChart::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  // The values follow the mouse at once.
  return true;
}

void StackedBarChart::keyPressEvent(QKeyEvent* event) {
  const bool isBack = event->key() == (layoutDirection() == Qt::RightToLeft ? Qt::Key_Right : Qt::Key_Left);
  const bool isForward =
      event->key() == (layoutDirection() == Qt::RightToLeft ? Qt::Key_Left : Qt::Key_Right);
  const std::size_t last = chart_.bars.size() - 1;
  if (!chart_.emptyText.empty() || chart_.bars.empty()) return QWidget::keyPressEvent(event);
  if (event->key() == Qt::Key_Home) {
    select(0);
  } else if (event->key() == Qt::Key_End) {
    select(last);
  } else if (isBack) {
    const std::size_t from = current_.value_or(last);
    select(from == 0 ? 0 : from - 1);
  } else if (isForward) {
    select(std::min(current_.value_or(last) + 1, last));
  } else {
    return QWidget::keyPressEvent(event);
  }
  showValues();
}

void StackedBarChart::mouseMoveEvent(QMouseEvent* event) {
  const auto bar = barAt(event->position());
  if (bar == current_) return;
  select(bar);
  showValues();
}

void StackedBarChart::leaveEvent(QEvent*) {
  if (!hasFocus()) select(std::nullopt);
}

void StackedBarChart::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  if (!current_ && chart_.emptyText.empty() && !chart_.bars.empty()) select(chart_.bars.size() - 1);
}

void StackedBarChart::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  select(std::nullopt);
}

void StackedBarChart::paintAxis(QPainter& painter) const {
  const Theme& theme = Theme::of(*this);
  const QRect area = plot();
  painter.setPen(theme.color(Theme::Role::hairline));
  painter.drawLine(area.topLeft(), area.topRight());
  painter.drawLine(area.bottomLeft(), area.bottomRight());
  painter.setPen(theme.color(Theme::Role::muted));
  const QString top = displayText(chart_.topLabel);
  const QRect label(0, 0, QFontMetrics(font()).horizontalAdvance(top) + 1, lineHeight());
  painter.drawText(QStyle::visualRect(layoutDirection(), rect(), label), Qt::AlignCenter, top);
}

void StackedBarChart::paintBar(QPainter& painter, std::size_t index) const {
  const Theme& theme = Theme::of(*this);
  const QRectF area = column(index);
  if (index == current_) {
    QPainterPath marked;
    marked.addRoundedRect(area, Theme::kSpaceTiny, Theme::kSpaceTiny);
    painter.fillPath(marked, theme.color(Theme::Role::raised));
  }
  const double width = std::round(std::min<double>(area.width() * kBarPart, kWidestBar));
  const double left = std::round(area.center().x() - width / 2);
  const auto& pieces = chart_.bars[index].pieces;
  for (const auto& piece : pieces) {
    const double bottom = area.bottom() - piece.bottom * area.height();
    const double height = std::max(piece.height * area.height() - kPieceGap, kLeastPiece);
    const QRectF box(left, bottom - height, width, height);
    QPainterPath path;
    const double radius = std::min<double>(Theme::kSpaceTiny / 2.0, height / 2);
    path.addRoundedRect(box, radius, radius);
    painter.fillPath(path, theme.series(piece.agentType));
  }
}

void StackedBarChart::paintLabel(QPainter& painter, std::size_t index) const {
  const QString label = displayText(chart_.bars[index].label);
  if (label.isEmpty()) return;
  const int width = QFontMetrics(font()).horizontalAdvance(label) + 1;
  QRectF place(0, height() - lineHeight(), width, lineHeight());
  place.moveLeft(column(index).center().x() - width / 2.0);
  place.moveLeft(std::clamp<double>(place.left(), 0, std::max(this->width() - width, 0)));
  painter.setPen(Theme::of(*this).color(Theme::Role::muted));
  painter.drawText(place, Qt::AlignCenter | Qt::TextSingleLine, label);
}

void StackedBarChart::paintLegend(QPainter& painter) const {
  const Theme& theme = Theme::of(*this);
  const QFontMetrics metrics(font());
  int total = 0;
  const auto widthOf = [&metrics](AgentType agent) {
    return kSwatch + Theme::kSpaceTiny + metrics.horizontalAdvance(displayText(displayName(agent))) +
           Theme::kSpaceLarge;
  };
  for (const AgentType agent : chart_.agents) total += widthOf(agent);
  // At the trailing edge; where there is no room for all, the first ones.
  const int topLabel = metrics.horizontalAdvance(displayText(chart_.topLabel)) + Theme::kSpaceLarge;
  int x = std::max(width() + Theme::kSpaceLarge - total, topLabel);
  for (const AgentType agent : chart_.agents) {
    const int next = x + widthOf(agent);
    if (next - Theme::kSpaceLarge > width()) break;
    const auto visual = [this](const QRect& place) {
      return QStyle::visualRect(layoutDirection(), rect(), place);
    };
    QPainterPath swatch;
    swatch.addRoundedRect(visual({x, (lineHeight() - kSwatch) / 2, kSwatch, kSwatch}), 2, 2);
    painter.fillPath(swatch, theme.series(agent));
    painter.setPen(theme.color(Theme::Role::muted));
    const int textLeft = x + kSwatch + Theme::kSpaceTiny;
    painter.drawText(visual({textLeft, 0, next - Theme::kSpaceLarge - textLeft, lineHeight()}),
                     Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     displayText(displayName(agent)));
    x = next;
  }
}

void StackedBarChart::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!chart_.emptyText.empty()) {
    painter.setPen(theme.color(Theme::Role::muted));
    painter.setFont(Theme::font(Theme::TextStyle::body));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, displayText(chart_.emptyText));
  } else {
    paintLegend(painter);
    for (std::size_t i = 0; i < chart_.bars.size(); ++i) paintBar(painter, i);
    painter.setRenderHint(QPainter::Antialiasing, false);
    paintAxis(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    for (std::size_t i = 0; i < chart_.bars.size(); ++i) paintLabel(painter, i);
  }
  if (hasFocus()) theme.drawFocusRing(painter, rect(), Theme::kSpaceTiny);
}

}  // namespace kestrel
