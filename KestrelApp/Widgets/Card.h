#pragma once

#include <QWidget>

namespace kestrel {

/// A surface for other widgets: lay them out in it.
class Card final : public QWidget {
 public:
  explicit Card(QWidget* parent = nullptr) : QWidget(parent) {}

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kestrel
