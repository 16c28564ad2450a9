#include "KestrelApp/KestrelBlobGlyphRenderer.h"

#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QSize>
#include <array>
#include <cmath>
#include <fmt/format.h>

#include "KestrelApp/GlyphCanvas.h"

namespace kestrel {
namespace {

constexpr int kHeightPoints = 18;
constexpr int kPlainWidth = 18;
constexpr int kOneDigitWidth = 22;
constexpr int kTwoDigitsWidth = 26;
constexpr std::int64_t kFirstTwoDigits = 10;

/// Device pixels. Trays ask for one of these; the menu bar of macOS for 18 points.
constexpr std::array<int, 6> kTrayHeights{16, 22, 24, 32, 44, 48};
constexpr std::array<int, 2> kMenuBarHeights{18, 36};

/// Counts change all day; beyond so many pictures all are drawn anew.
constexpr std::size_t kMostPictures = 256;

QPixmap toPixmap(const GlyphCanvas& canvas) {
  static_assert(sizeof(PixelRGBA) == 4);
  const auto* bytes = reinterpret_cast<const uchar*>(canvas.pixels().data());
  const int bytesPerLine = canvas.width() * static_cast<int>(sizeof(PixelRGBA));
  const QImage borrowed(bytes, canvas.width(), canvas.height(), bytesPerLine, QImage::Format_RGBA8888);
  return QPixmap::fromImage(borrowed.copy());
}

}  // namespace

QSize KestrelBlobGlyphRenderer::iconSize(KestrelVisualState state, std::int64_t activeCount) {
  const bool showsOneDigit = activeCount >= 1 && isAnimated(state);
  const int width = activeCount >= kFirstTwoDigits ? kTwoDigitsWidth
                    : showsOneDigit                ? kOneDigitWidth
                                                   : kPlainWidth;
  return {width, kHeightPoints};
}

QSize KestrelBlobGlyphRenderer::pictureSize(KestrelVisualState state, std::int64_t activeCount,
                                            int height) const {
  if (!isTinted_) return {height, height};
  const int points = iconSize(state, activeCount).width();
  return {static_cast<int>(std::lround(static_cast<double>(points) * height / kHeightPoints)), height};
}

QIcon KestrelBlobGlyphRenderer::createStatusIcon(KestrelVisualState state, int frameIndex,
                                                 std::int64_t activeCount, bool isDisabled) {
  // Frames repeat, and so must their keys.
  const int frameCount = provider_.frameCount(state);
  const int index = (frameIndex % frameCount + frameCount) % frameCount;
  const std::string key = fmt::format("{}_{}_{}_{}", rawValue(state), index, activeCount, isDisabled);
  const LockGuard guard(lock_);
  if (const auto known = cache_.find(key); known != cache_.end()) return *known->second;

  const bool showsCount = iconSize(state, activeCount).width() > kPlainWidth;
  // At rest the body stands alone, so its outline is that of the body.
  const PixelSpriteFrame frame =
      isDisabled ? provider_.frame(KestrelVisualState::idle, 0) : provider_.frame(state, index);
  QIcon icon;
  const auto draw = [&](int height) {
    GlyphCanvas canvas(pictureSize(state, activeCount, height).width(), height);
    canvas.drawFrame(frame, showsCount && !isTinted_);
    if (isDisabled) canvas.keepOutline();
    if (isTinted_) {
      canvas.keepShape();
    } else {
      canvas.addHairline();
    }
    using Style = GlyphCanvas::CountStyle;
    if (showsCount) canvas.drawCount(activeCount, isTinted_ ? Style::plain : Style::grounded);
    QPixmap pixmap = toPixmap(canvas);
    if (isTinted_) pixmap.setDevicePixelRatio(static_cast<double>(height) / kHeightPoints);
    icon.addPixmap(pixmap);
  };
  if (isTinted_) {
    for (const int height : kMenuBarHeights) draw(height);
  } else {
    for (const int height : kTrayHeights) draw(height);
  }
  icon.setIsMask(isTinted_);
  if (cache_.size() >= kMostPictures) cache_.clear();
  cache_.emplace(key, std::make_shared<const QIcon>(icon));
  return icon;
}

}  // namespace kestrel
