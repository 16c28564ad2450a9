#pragma once

#include <QTimer>
#include <QWidget>

#include "KestrelCore/Presentation/PixelAvatarProvider.h"

namespace kestrel {

/// The mascot at work. Its pixels are whole device pixels, each as large as fits, and it moves only while it
/// can be seen.
class PixelWorkerAnimationView final : public QWidget {
 public:
  /// A square of `size` logical pixels. The provider outlives the view.
  PixelWorkerAnimationView(const PixelAvatarProvider& provider, int size, QWidget* parent = nullptr);

  /// Begins at the first frame when the state is another.
  void setState(KestrelVisualState state);
  [[nodiscard]] bool isMoving() const { return timer_.isActive(); }

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void updateTimer(bool isShown);

  const PixelAvatarProvider& provider_;
  KestrelVisualState state_ = KestrelVisualState::idle;
  int frameIndex_ = 0;
  QTimer timer_;
};

/// Draws a frame into the middle of the bottom of an area. A pixel of it covers as many whole device pixels
/// as fit, at least one.
void drawSprite(QPainter& painter, const QRectF& area, const PixelSpriteFrame& frame);

}  // namespace kestrel
