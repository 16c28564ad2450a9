#pragma once

#include <QToolButton>

#include "KestrelApp/Widgets/Icon.h"

namespace kestrel {

/// A button with one of Kestrel's icons and no frame, drawn in the colours of the theme.
class IconButton final : public QToolButton {
 public:
  /// The name is read aloud and shown as the tool tip.
  IconButton(Icon icon, const QString& name, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  const Icon icon_;
};

}  // namespace kestrel
