#include "KestrelApp/Widgets/Badge.h"

#include <QFontMetrics>
#include <QPainter>

#include "KestrelApp/Theme.h"

namespace kestrel {

Badge::Badge(QWidget* parent) : QWidget(parent) {
  setFont(Theme::font(Theme::TextStyle::caption, true));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Badge::setText(const QString& text, Tone tone) {
  text_ = text;
  tone_ = tone;
  setAccessibleName(text);
  updateGeometry();
  update();
}

QSize Badge::sizeHint() const {
  return {QFontMetrics(font()).horizontalAdvance(text_) + Theme::kBadgeHeight, Theme::kBadgeHeight};
}

void Badge::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawBadge(painter, rect(), text_, tone_);
}

}  // namespace kestrel
