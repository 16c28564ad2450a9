#include "KestrelApp/Widgets/WrappedLabel.h"

#include <QFont>

namespace kestrel {

WrappedLabel::WrappedLabel(Theme::TextStyle style, QWidget* parent) : QLabel(parent) {
  setFont(Theme::font(style));
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Minimum);
}

void WrappedLabel::setMuted(bool isMuted) {
  setForegroundRole(isMuted ? QPalette::PlaceholderText : QPalette::WindowText);
}

}  // namespace kestrel
