#pragma once

#include <functional>
#include <memory>

class QPoint;
class QRect;
class QSize;
class QWidget;

namespace kestrel {

/// The window that a click on the status icon opens: it closes at a click elsewhere and at Escape. Where the
/// desktop forbids windows to choose their place it is a plain dialog, and closes when it loses the focus.
/// Main thread.
class StatusPopover {
 public:
  /// `onClosed` is called whenever it disappears.
  StatusPopover(std::unique_ptr<QWidget> content, std::function<void()> onClosed);
  ~StatusPopover();
  StatusPopover(const StatusPopover&) = delete;
  StatusPopover& operator=(const StatusPopover&) = delete;

  [[nodiscard]] bool isShown() const;
  /// Beside the anchor, in coordinates of the screen.
  void show(const QRect& anchor);
  void close();
  [[nodiscard]] QWidget& window();

  /// Centred below the anchor, or above it when that is in the lower half, and moved until all of it is in
  /// the available area.
  static QPoint placeBeside(const QRect& anchor, const QSize& size, const QRect& available);

 private:
  class Window;

  const std::unique_ptr<Window> window_;
};

}  // namespace kestrel
