#include "KestrelApp/StatusPopover.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLatin1String>
#include <QScreen>
#include <QVBoxLayout>
#include <QWidget>
#include <algorithm>
#include <utility>

namespace kestrel {
namespace {

/// On Wayland a window neither knows nor chooses its place.
bool mayPlaceWindows() {
  return !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

}  // namespace

class StatusPopover::Window final : public QWidget {
 public:
  Window(std::unique_ptr<QWidget> content, std::function<void()> onClosed)
      : QWidget(nullptr, mayPlaceWindows() ? Qt::Popup | Qt::FramelessWindowHint : Qt::Dialog),
        onClosed_(std::move(onClosed)) {
    setWindowTitle(QStringLiteral("Kestrel"));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(content.release());
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) close();
  }
  void hideEvent(QHideEvent* event) override {
    QWidget::hideEvent(event);
    onClosed_();
  }

 private:
  const std::function<void()> onClosed_;
};

StatusPopover::StatusPopover(std::unique_ptr<QWidget> content, std::function<void()> onClosed)
    : window_(std::make_unique<Window>(std::move(content), std::move(onClosed))) {}

StatusPopover::~StatusPopover() = default;

QWidget& StatusPopover::window() {
  return *window_;
}

bool StatusPopover::isShown() const {
  return window_->isVisible();
}

void StatusPopover::show(const QRect& anchor) {
  const QScreen* screen = QGuiApplication::screenAt(anchor.center());
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  if (screen != nullptr) window_->move(placeBeside(anchor, window_->sizeHint(), screen->availableGeometry()));
  window_->show();
  window_->raise();
  window_->activateWindow();
}

void StatusPopover::close() {
  window_->close();
}

QPoint StatusPopover::placeBeside(const QRect& anchor, const QSize& size, const QRect& available) {
  const bool isAbove = anchor.center().y() > available.center().y();
  const int x = anchor.center().x() - size.width() / 2;
  const int y = isAbove ? anchor.top() - size.height() : anchor.bottom() + 1;
  // A screen smaller than the window shows its beginning.
  return {std::max(available.left(), std::min(x, available.right() + 1 - size.width())),
          std::max(available.top(), std::min(y, available.bottom() + 1 - size.height()))};
}

}  // namespace kestrel
