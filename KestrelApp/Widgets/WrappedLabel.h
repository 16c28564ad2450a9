#pragma once

#include <QLabel>

#include "KestrelApp/Theme.h"

namespace kestrel {

/// Plain text over as many lines as it needs, from the leading edge of the layout on whichever way it runs.
/// It can be selected with the mouse.
class WrappedLabel final : public QLabel {
 public:
  explicit WrappedLabel(Theme::TextStyle style, QWidget* parent = nullptr);

  /// Normal or muted.
  void setMuted(bool isMuted);
  void setCentered();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void alignToLeadingEdge();

  bool isCentered_ = false;
};

}  // namespace kestrel
