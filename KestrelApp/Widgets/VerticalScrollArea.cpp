#include "KestrelApp/Widgets/VerticalScrollArea.h"

#include <QEvent>
#include <QLayout>

namespace kestrel {

VerticalScrollArea::VerticalScrollArea(QWidget* content, QWidget* parent) : QScrollArea(parent) {
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  setWidget(content);
}

bool VerticalScrollArea::eventFilter(QObject* watched, QEvent* event) {
  // The base asks for the content's size before the layouts inside have noticed that it changed.
  if (watched == widget() && event->type() == QEvent::LayoutRequest) widget()->layout()->activate();
  return QScrollArea::eventFilter(watched, event);
}

}  // namespace kestrel
