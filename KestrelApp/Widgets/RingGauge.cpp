#include "KestrelApp/Widgets/RingGauge.h"

#include <QColor>
#include <QPainter>
#include <algorithm>

#include "KestrelApp/Theme.h"

namespace kestrel {

RingGauge::RingGauge(QWidget* parent) : QWidget(parent) {
  setUnknown({});
}

void RingGauge::setValue(double fraction, const QString& figure, Tone tone) {
  value_ = fraction;
  figure_ = figure;
  tone_ = tone;
  setAccessibleDescription(figure);
  update();
}

void RingGauge::setUnknown(const QString& reason) {
  value_.reset();
  figure_ = QStringLiteral("–");
  setAccessibleDescription(reason);
  update();
}

QSize RingGauge::sizeHint() const {
  constexpr int kSide = 3 * Theme::kSpaceHuge;
  return {kSide, kSide};
}

void RingGauge::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  const double side = std::min(width(), height());
  QRectF area(0, 0, side, side);
  area.moveCenter(QRectF(rect()).center());
  const auto fill = tone_ == Tone::accent ? theme.color(Theme::Role::accentArea) : theme.color(tone_);
  theme.drawRing(painter, area, value_.value_or(0), fill);
  painter.setFont(Theme::font(Theme::TextStyle::body, true));
  painter.setPen(theme.color(value_ ? Theme::Role::text : Theme::Role::muted));
  painter.drawText(area, Qt::AlignCenter, figure_);
}

}  // namespace kestrel
