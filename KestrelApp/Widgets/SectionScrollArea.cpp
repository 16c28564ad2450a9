#include "KestrelApp/Widgets/SectionScrollArea.h"

#include <QBoxLayout>
#include <QEvent>

#include "KestrelApp/Theme.h"

namespace kestrel {

SectionScrollArea::SectionScrollArea(QWidget* parent) : QScrollArea(parent) {
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  auto* content = new QWidget;
  lines_ = new QVBoxLayout(content);
  lines_->setContentsMargins(Theme::kSpaceHuge, Theme::kSpaceHuge, Theme::kSpaceHuge, Theme::kSpaceHuge);
  lines_->setSpacing(Theme::kSpaceMedium);
  setWidget(content);
}

bool SectionScrollArea::eventFilter(QObject* watched, QEvent* event) {
  // The base asks for the content's size before the layouts inside have noticed that it changed.
  if (watched == widget() && event->type() == QEvent::LayoutRequest) lines_->activate();
  return QScrollArea::eventFilter(watched, event);
}

}  // namespace kestrel
