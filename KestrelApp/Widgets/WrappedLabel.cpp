#include "KestrelApp/Widgets/WrappedLabel.h"

#include <QEvent>
#include <QFont>

namespace kestrel {

WrappedLabel::WrappedLabel(Theme::TextStyle style, QWidget* parent) : QLabel(parent) {
  setFont(Theme::font(style));
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  alignToLeadingEdge();
}

void WrappedLabel::setCentered() {
  isCentered_ = true;
  setAlignment(Qt::AlignHCenter | Qt::AlignTop);
}

void WrappedLabel::alignToLeadingEdge() {
  const auto edge = layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
  setAlignment(edge | Qt::AlignAbsolute | Qt::AlignVCenter);
}

void WrappedLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::LayoutDirectionChange && !isCentered_) alignToLeadingEdge();
}

void WrappedLabel::setMuted(bool isMuted) {
  setForegroundRole(isMuted ? QPalette::PlaceholderText : QPalette::WindowText);
}

}  // namespace kestrel
