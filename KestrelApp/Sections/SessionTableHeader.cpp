#include "KestrelApp/Sections/SessionTableHeader.h"

#include <QColor>
#include <QFont>
#include <QPainter>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/TextLine.h"

namespace kestrel {

bool isTrailing(const QVariant& alignment) {
  return (alignment.toInt() & Qt::AlignRight) != 0;
}

SessionTableHeader::SessionTableHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {}

void SessionTableHeader::paintSection(QPainter* painter, const QRect& area, int column) const {
  const Theme& theme = Theme::of(*this);
  const bool isSorted = isSortIndicatorShown() && sortIndicatorSection() == column;
  const QString title = model()->headerData(column, Qt::Horizontal).toString();
  const QString arrow =
      sortIndicatorOrder() == Qt::AscendingOrder ? QStringLiteral("↑") : QStringLiteral("↓");
  const QFont font = Theme::font(Theme::TextStyle::body, isSorted);
  const QColor ink = theme.color(isSorted ? Theme::Role::text : Theme::Role::muted);
  painter->save();
  TextLine line(*painter, area.adjusted(Theme::kSpaceSmall, 0, -Theme::kSpaceSmall, 0), layoutDirection());
  if (isTrailing(model()->headerData(column, Qt::Horizontal, Qt::TextAlignmentRole))) {
    line.addTrailing(title, font, ink);
    if (isSorted) line.addTrailing(arrow, font, theme.color(Theme::Role::accent));
  } else {
    line.addLeading(title, font, ink);
    if (isSorted) line.addLeading(arrow, font, theme.color(Theme::Role::accent));
  }
  painter->fillRect(area.left(), area.bottom(), area.width(), Theme::kHairline,
                    theme.color(Theme::Role::hairline));
  painter->restore();
}

}  // namespace kestrel
