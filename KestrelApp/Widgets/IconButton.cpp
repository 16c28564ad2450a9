#include "KestrelApp/Widgets/IconButton.h"

#include <QPainter>

#include "KestrelApp/Theme.h"

namespace kestrel {

IconButton::IconButton(Icon icon, const QString& name, QWidget* parent) : QToolButton(parent), icon_(icon) {
  setAccessibleName(name);
  setToolTip(name);
  setProperty("quiet", true);
  setFocusPolicy(Qt::StrongFocus);
  setFixedSize(Theme::kButtonHeight, Theme::kButtonHeight);
}

void IconButton::paintEvent(QPaintEvent* event) {
  QToolButton::paintEvent(event);
  QRectF area(0, 0, Theme::kIconSize, Theme::kIconSize);
  area.moveCenter(QRectF(rect()).center());
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  drawIcon(painter, area, icon_, theme.color(isEnabled() ? Theme::Role::text : Theme::Role::muted));
}

}  // namespace kestrel
