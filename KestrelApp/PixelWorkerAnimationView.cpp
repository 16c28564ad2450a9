#include "KestrelApp/PixelWorkerAnimationView.h"

#include <QColor>
#include <QPainter>
#include <QTransform>
#include <algorithm>
#include <cmath>

namespace kestrel {

PixelWorkerAnimationView::PixelWorkerAnimationView(const PixelAvatarProvider& provider, int size,
                                                   QWidget* parent)
    : QWidget(parent), provider_(provider) {
  setFixedSize(size, size);
  timer_.setTimerType(Qt::CoarseTimer);
  timer_.callOnTimeout(this, [this] {
    frameIndex_ = (frameIndex_ + 1) % provider_.frameCount(state_);
    update();
  });
}

void PixelWorkerAnimationView::setState(KestrelVisualState state) {
  if (state_ == state) return;
  state_ = state;
  frameIndex_ = 0;
  const auto label = displayLabel(state);
  setAccessibleName(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())));
  updateTimer(isVisible());
  update();
}

void PixelWorkerAnimationView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  updateTimer(true);
}

// Also when the window is minimised.
void PixelWorkerAnimationView::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  updateTimer(false);
}

void PixelWorkerAnimationView::updateTimer(bool isShown) {
  timer_.stop();
  if (!isShown || provider_.frameCount(state_) < 2) return;
  timer_.start(static_cast<int>(std::lround(provider_.frameDuration(state_) * 1000)));
}

void PixelWorkerAnimationView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawSprite(painter, rect(), provider_.frame(state_, frameIndex_));
}

void drawSprite(QPainter& painter, const QRectF& area, const PixelSpriteFrame& frame) {
  if (frame.width() == 0 || frame.height() == 0) return;
  // Laid out in device pixels, so that none is larger than another at a fractional scale.
  const QTransform toDevice = painter.deviceTransform();
  const QTransform fromDevice = toDevice.inverted();
  const QRectF device = toDevice.mapRect(area);
  const double fits = std::min(device.width() / frame.width(), device.height() / frame.height());
  // A hair more, since a scale may come with an error of rounding.
  const int pixel = std::max(static_cast<int>(std::floor(fits + 1e-6)), 1);
  const int left = static_cast<int>(std::lround(device.center().x() - pixel * frame.width() / 2.0));
  const int top = static_cast<int>(std::lround(device.bottom())) - pixel * frame.height();
  for (int y = 0; y < frame.height(); ++y) {
    for (int x = 0; x < frame.width(); ++x) {
      const PixelRGBA color = frame.pixelAt(x, y);
      if (color.a == 0) continue;
      const QRectF square(left + x * pixel, top + y * pixel, pixel, pixel);
      painter.fillRect(fromDevice.mapRect(square), QColor(color.r, color.g, color.b, color.a));
    }
  }
}

}  // namespace kestrel
