#pragma once

#include <QWidget>

namespace kestrel {

/// A hairline across.
class Separator final : public QWidget {
 public:
  explicit Separator(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kestrel
