#include "KestrelApp/Widgets/TextLine.h"

#include <QColor>
#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr int kMaximumCharacters = 500;

}  // namespace

void TextLine::add(const QString& text, const QFont& font, const QColor& color, double part, bool isLeading) {
  const QFontMetrics metrics(font);
  const QString line = QString(text.left(kMaximumCharacters)).simplified();
  const int width = std::min(metrics.horizontalAdvance(line) + 1, static_cast<int>(rest_.width() * part));
  if (line.isEmpty() || width <= 0) return;
  QRect place = rest_;
  place.setWidth(width);
  if (isLeading) {
    rest_.setLeft(place.right() + 1 + Theme::kSpaceSmall);
  } else {
    place.moveRight(rest_.right());
    rest_.setRight(place.left() - 1 - Theme::kSpaceSmall);
  }
  painter_.setFont(font);
  painter_.setPen(color);
  const auto edge = isLeading == (direction_ == Qt::LeftToRight) ? Qt::AlignLeft : Qt::AlignRight;
  painter_.setLayoutDirection(line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
  painter_.drawText(QStyle::visualRect(direction_, area_, place),
                    static_cast<int>(edge | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
                    metrics.elidedText(line, Qt::ElideRight, width));
}

}  // namespace kestrel
