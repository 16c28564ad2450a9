#pragma once

#include <QCoreApplication>
#include <QPushButton>

namespace kestrel {

/// Each round lays out one level of widgets more.
inline void layOut() {
  for (int round = 0; round < 10; ++round) QCoreApplication::processEvents();
}

/// The visible button with that text; null without one.
inline QPushButton* buttonIn(const QWidget& widget, const QString& text) {
  for (auto* each : widget.findChildren<QPushButton*>()) {
    if (each->text() == text && each->isVisible()) return each;
  }
  return nullptr;
}

}  // namespace kestrel
