#pragma once

#include <QAbstractButton>

#include "KestrelApp/Widgets/Icon.h"

namespace kestrel {

/// An entry of a sidebar: an icon and a word, in a narrow one only the icon. The current one has a bar at its
/// edge and a ground of its own.
class SidebarButton final : public QAbstractButton {
 public:
  /// `hint` stands behind the word in the tool tip, such as the keys that do the same.
  SidebarButton(Icon icon, const QString& word, const QString& hint, QWidget* parent = nullptr);

  void setCompact(bool isCompact);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  const Icon icon_;
  bool isCompact_ = false;
  /// The keyboard was used to come here. A window that opens has its focus somewhere, too.
  bool isRinged_ = false;
};

}  // namespace kestrel
