#include "KestrelApp/Widgets/PageDots.h"

#include <QColor>
#include <QPainter>
#include <QStyle>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr int kDot = Theme::kSpaceSmall;
constexpr int kLongDot = 3 * kDot;

}  // namespace

PageDots::PageDots(int count, QWidget* parent) : QWidget(parent), count_(count) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setCurrent(0);
}

void PageDots::setCurrent(int page) {
  current_ = page;
  setAccessibleName(QStringLiteral("Page %1 of %2").arg(page + 1).arg(count_));
  update();
}

QSize PageDots::sizeHint() const {
  return {kLongDot + (count_ - 1) * 2 * kDot, kDot};
}

void PageDots::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  int x = 0;
  for (int i = 0; i < count_; ++i) {
    const QRect dot(x, 0, i == current_ ? kLongDot : kDot, kDot);
    painter.setBrush(theme.color(i == current_ ? Theme::Role::accentArea : Theme::Role::track));
    painter.drawRoundedRect(QStyle::visualRect(layoutDirection(), rect(), dot), kDot / 2.0, kDot / 2.0);
    x += dot.width() + kDot;
  }
}

}  // namespace kestrel
