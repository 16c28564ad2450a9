#pragma once

#include <QScrollArea>

namespace kestrel {

/// A frame without a border that scrolls what is too high, and only that. What gets the keyboard comes into
/// sight.
class VerticalScrollArea : public QScrollArea {
 public:
  /// The content has a layout.
  explicit VerticalScrollArea(QWidget* content, QWidget* parent = nullptr);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace kestrel
