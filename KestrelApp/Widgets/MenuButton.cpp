#include "KestrelApp/Widgets/MenuButton.h"

#include <QColor>
#include <QMenu>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/Icon.h"

namespace kestrel {

MenuButton::MenuButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
  setProperty("menu", true);
  setAutoDefault(true);
  setMenu(new QMenu(this));
}

void MenuButton::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QStylePainter painter(this);
  QStyleOptionButton option;
  initStyleOption(&option);
  option.text.clear();
  // The style's own mark goes too.
  option.features.setFlag(QStyleOptionButton::HasMenu, false);
  painter.drawControl(QStyle::CE_PushButton, option);

  const QColor color = theme.color(isEnabled() ? Theme::Role::text : Theme::Role::muted);
  const QRect inside = rect().adjusted(Theme::kSpaceMedium, 0, -Theme::kSpaceSmall, 0);
  painter.setPen(color);
  painter.drawText(QStyle::visualRect(layoutDirection(), rect(), inside),
                   Qt::AlignVCenter | Qt::AlignLeading | Qt::TextShowMnemonic, text());
  QRect chevron(0, 0, Theme::kSmallIconSize, Theme::kSmallIconSize);
  chevron.moveCenter(inside.center());
  chevron.moveRight(inside.right());
  drawIcon(painter, QStyle::visualRect(layoutDirection(), rect(), chevron), Icon::chevronDown, color);
}

}  // namespace kestrel
