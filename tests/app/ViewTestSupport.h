#pragma once

#include <QCoreApplication>
#include <QPushButton>
#include <vector>

namespace kestrel {

/// Each round lays out one level of widgets more.
inline void layOut() {
  for (int round = 0; round < 10; ++round) QCoreApplication::processEvents();
}

/// The widgets of a class below another, in the order of their making. What has no meta-object of its own is
/// not told apart by Qt's search.
template <typename Widget>
std::vector<Widget*> childrenOf(const QWidget& parent, const QString& name = {}) {
  std::vector<Widget*> found;
  for (auto* each : parent.findChildren<QWidget*>(name)) {
    if (auto* match = dynamic_cast<Widget*>(each)) found.push_back(match);
  }
  return found;
}

/// The first of them; null without one.
template <typename Widget>
Widget* childOf(const QWidget& parent, const QString& name = {}) {
  const auto found = childrenOf<Widget>(parent, name);
  return found.empty() ? nullptr : found.front();
}

/// The visible button with that text; null without one.
inline QPushButton* buttonIn(const QWidget& widget, const QString& text) {
  for (auto* each : widget.findChildren<QPushButton*>()) {
    if (each->text() == text && each->isVisible()) return each;
  }
  return nullptr;
}

}  // namespace kestrel
