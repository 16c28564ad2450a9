#pragma once

#include <QLabel>

#include "KestrelApp/Theme.h"

namespace kestrel {

/// Plain text over as many lines as it needs. It can be selected with the mouse.
class WrappedLabel final : public QLabel {
 public:
  explicit WrappedLabel(Theme::TextStyle style, QWidget* parent = nullptr);

  /// Normal or muted.
  void setMuted(bool isMuted);
};

}  // namespace kestrel
