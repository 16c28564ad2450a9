#include "KestrelApp/Widgets/Gauge.h"

#include <QColor>
#include <QFontMetrics>
#include <QPainter>
#include <cmath>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr int kWidth = 16 * Theme::kSpaceTiny;

QColor fillOf(const Theme& theme, Tone tone) {
  return tone == Tone::accent ? theme.color(Theme::Role::accentArea) : theme.color(tone);
}

}  // namespace

Gauge::Gauge(QWidget* parent) : QWidget(parent) {
  setFont(Theme::font(Theme::TextStyle::caption));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void Gauge::setValue(double fraction, Tone tone) {
  if (value_ == fraction && tone_ == tone) return;
  value_ = fraction;
  tone_ = tone;
  setAccessibleDescription(QStringLiteral("%1 %").arg(std::lround(fraction * 100)));
  updateGeometry();
  update();
}

void Gauge::setUnknown(const QString& reason) {
  value_.reset();
  reason_ = reason;
  setAccessibleDescription(reason);
  updateGeometry();
  update();
}

QSize Gauge::sizeHint() const {
  return {kWidth, value_ ? Theme::kGaugeHeight : QFontMetrics(font()).height()};
}

void Gauge::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  if (value_) {
    QRectF bar(0, 0, width(), Theme::kGaugeHeight);
    bar.moveCenter(QRectF(rect()).center());
    return theme.drawBar(painter, bar, *value_, fillOf(theme, tone_), layoutDirection());
  }
  painter.setPen(theme.color(Theme::Role::muted));
  painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine,
                   QFontMetrics(font()).elidedText(reason_, Qt::ElideRight, width()));
}

}  // namespace kestrel
