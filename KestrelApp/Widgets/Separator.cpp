#include "KestrelApp/Widgets/Separator.h"

#include <QColor>
#include <QPainter>

#include "KestrelApp/Theme.h"

namespace kestrel {

Separator::Separator(QWidget* parent) : QWidget(parent) {
  setFixedHeight(Theme::kHairline);
}

void Separator::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), Theme::of(*this).color(Theme::Role::hairline));
}

}  // namespace kestrel
