#include "KestrelApp/ApplicationTheme.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>
#include <QToolTip>

#include "KestrelApp/KestrelStyle.h"

namespace kestrel {

ApplicationTheme::ApplicationTheme(QApplication& application) : application_(application) {
  QApplication::setStyle(new KestrelStyle);
  QApplication::setFont(Theme::font(Theme::TextStyle::body));
  application_.installEventFilter(this);
  update();
}

void ApplicationTheme::setPreference(std::optional<Theme::Scheme> scheme) {
  preference_ = scheme;
  update();
}

bool ApplicationTheme::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &application_ && event->type() == QEvent::ApplicationPaletteChange) update();
  return QObject::eventFilter(watched, event);
}

void ApplicationTheme::update() {
  // The application's own palette stays the system's: it is what tells of a change.
  const Theme::Scheme scheme = preference_.value_or(Theme::schemeOf(QApplication::palette()));
  if (applied_ == scheme) return;
  applied_ = scheme;
  const Theme& theme = Theme::of(scheme);
  QApplication::setPalette(theme.palette(), "QWidget");
  QToolTip::setPalette(theme.palette());
  application_.setStyleSheet(theme.styleSheet());
}

}  // namespace kestrel
