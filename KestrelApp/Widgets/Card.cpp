#include "KestrelApp/Widgets/Card.h"

#include <QPainter>

#include "KestrelApp/Theme.h"

namespace kestrel {

void Card::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
