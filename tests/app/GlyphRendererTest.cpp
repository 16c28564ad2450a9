#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <gtest/gtest.h>

#include "KestrelApp/GlyphCanvas.h"
#include "KestrelApp/KestrelBlobGlyphRenderer.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

using State = KestrelVisualState;

TEST(GlyphRenderer, WidensForTheCount) {
  struct Case {
    State state;
    std::int64_t count;
    int width;
  };
  for (const Case& each :
       {Case{State::working, 0, 18}, Case{State::working, 3, 22}, Case{State::waiting, 9, 22},
        Case{State::completed, 1, 22}, Case{State::idle, 3, 18}, Case{State::error, 9, 18},
        Case{State::idle, 10, 26}, Case{State::working, 12, 26}}) {
    EXPECT_EQ(KestrelBlobGlyphRenderer::iconSize(each.state, each.count), QSize(each.width, 18))
        << rawValue(each.state) << each.count;
  }
}

TEST(GlyphRenderer, DrawsEachTraySizeOnceAndMasksForTintedBars) {
  KestrelBlobGlyphRenderer renderer(KestrelBlobAvatarProvider::shared(), false);
  const QIcon icon = renderer.createStatusIcon(State::working, 2, 3, false);
  EXPECT_EQ(icon.availableSizes(),
            (QList<QSize>{{20, 16}, {27, 22}, {29, 24}, {39, 32}, {54, 44}, {59, 48}}));
  EXPECT_FALSE(icon.isMask());
  const auto keyOf = [&](int frame, std::int64_t count, bool isDisabled) {
    return renderer.createStatusIcon(State::working, frame, count, isDisabled).cacheKey();
  };
  EXPECT_EQ(keyOf(2, 3, false), icon.cacheKey());
  EXPECT_EQ(keyOf(6, 3, false), icon.cacheKey());
  EXPECT_EQ(keyOf(-2, 3, false), icon.cacheKey());
  for (const auto other : {keyOf(1, 3, false), keyOf(2, 4, false), keyOf(2, 3, true)})
    EXPECT_NE(other, icon.cacheKey());

  KestrelBlobGlyphRenderer tinted(KestrelBlobAvatarProvider::shared(), true);
  EXPECT_TRUE(tinted.createStatusIcon(State::idle, 0, 0, false).isMask());
}

TEST(GlyphRenderer, KeepsTheBodysOutlineWhenDisabled) {
  KestrelBlobGlyphRenderer renderer(KestrelBlobAvatarProvider::shared(), false);
  const auto imageOf = [&](State state, bool isDisabled) {
    return renderer.createStatusIcon(state, 0, 0, isDisabled).pixmap(QSize(16, 16)).toImage();
  };
  const QImage disabled = imageOf(State::error, true);
  EXPECT_EQ(disabled, imageOf(State::idle, true));
  EXPECT_EQ(qAlpha(disabled.pixel(8, 10)), 0);
  EXPECT_EQ(qAlpha(imageOf(State::idle, false).pixel(8, 9)), 255);
  EXPECT_EQ(qAlpha(disabled.pixel(3, 9)), 255);
}

TEST(GlyphCanvas, ScalesByWholePixelsAndStaysInside) {
  const PixelSpriteFrame dot(16, 16, std::vector<PixelRGBA>(256, PixelRGBA::red));
  GlyphCanvas canvas(18, 44);
  canvas.drawFrame(dot);
  EXPECT_EQ(canvas.pixelAt(6, 12), PixelRGBA::red);
  EXPECT_EQ(canvas.pixelAt(37, 43), PixelRGBA::red);
  for (const auto& [x, y] : {std::pair{5, 43}, {38, 43}, {6, 11}, {-1, 0}, {0, 44}})
    EXPECT_EQ(canvas.pixelAt(x, y), PixelRGBA::clear) << x << "," << y;
  canvas.addHairline();
  EXPECT_NE(canvas.pixelAt(5, 20).a, 0);
  EXPECT_NE(canvas.pixelAt(5, 20).a, 255);
  EXPECT_EQ(canvas.pixelAt(4, 20), PixelRGBA::clear);
}

/// Digits as they can be read, and apart from the picture's edges, at every size.
TEST(GlyphCanvas, WritesTwoDigitsAtMost) {
  const PixelSpriteFrame nothing(16, 16, {});
  const auto drawn = [&](std::int64_t count, int height) {
    GlyphCanvas canvas(26, height);
    canvas.drawFrame(nothing);
    canvas.drawCount(count);
    return canvas.pixels();
  };
  for (const int height : {16, 22, 24, 32, 44, 48}) {
    EXPECT_EQ(drawn(100, height), drawn(99, height));
    EXPECT_NE(drawn(99, height), drawn(98, height));
    GlyphCanvas canvas(26, height);
    canvas.drawFrame(nothing);
    canvas.drawCount(88);
    for (int y = 0; y < height; ++y)
      EXPECT_NE(canvas.pixelAt(canvas.width() - 1, y), PixelRGBA::white) << height;
  }
}

}  // namespace
}  // namespace kestrel
