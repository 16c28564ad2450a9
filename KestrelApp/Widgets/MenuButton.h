#pragma once

#include <QPushButton>

class QMenu;

namespace kestrel {

/// A button that opens a menu, and shows so.
class MenuButton final : public QPushButton {
 public:
  explicit MenuButton(const QString& text, QWidget* parent = nullptr);

  /// Fill it once.
  [[nodiscard]] QMenu& entries() const { return *menu(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kestrel
