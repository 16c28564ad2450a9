#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <gtest/gtest.h>
#include <set>
#include <utility>
#include <vector>

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
  EXPECT_EQ(icon.availableSizes(), (QList<QSize>{{16, 16}, {22, 22}, {24, 24}, {32, 32}, {44, 44}, {48, 48}}))
      << "panels squeeze what is wider";
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
  const QIcon mask = tinted.createStatusIcon(State::working, 0, 3, false);
  EXPECT_TRUE(mask.isMask());
  EXPECT_EQ(mask.availableSizes(), (QList<QSize>{{22, 18}, {44, 36}}));
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
  GlyphCanvas canvas(44, 44);
  canvas.drawFrame(dot, false);
  EXPECT_EQ(canvas.pixelAt(6, 6), PixelRGBA::red);
  EXPECT_EQ(canvas.pixelAt(37, 37), PixelRGBA::red);
  for (const auto& [x, y] : {std::pair{5, 37}, {38, 37}, {6, 5}, {6, 38}, {-1, 0}, {0, 44}})
    EXPECT_EQ(canvas.pixelAt(x, y), PixelRGBA::clear) << x << "," << y;
  canvas.addHairline();
  EXPECT_NE(canvas.pixelAt(5, 20).a, 0);
  EXPECT_NE(canvas.pixelAt(5, 20).a, 255);
  EXPECT_EQ(canvas.pixelAt(4, 20), PixelRGBA::clear);
}

/// Draws every count, on nothing.
void expectToTellCountsApart(int width, int height, GlyphCanvas::CountStyle style) {
  std::set<std::vector<std::uint32_t>> seen;
  for (int count = 1; count <= 99; ++count) {
    GlyphCanvas canvas(width, height);
    canvas.drawFrame(PixelSpriteFrame(16, 16, {}), false);
    canvas.drawCount(count, style);
    const bool isTinted = style == GlyphCanvas::CountStyle::plain;
    std::vector<std::uint32_t> shown;
    for (const PixelRGBA& pixel : canvas.pixels())
      shown.push_back(isTinted ? pixel.a : static_cast<std::uint32_t>(pixel.a) << 8U | pixel.g);
    EXPECT_TRUE(seen.insert(std::move(shown)).second) << count << " at " << height;
  }
}

TEST(GlyphCanvas, WritesEachCountInEachSizeDifferently) {
  using Style = GlyphCanvas::CountStyle;
  for (const int height : {16, 22, 24, 32, 44, 48}) expectToTellCountsApart(height, height, Style::grounded);
  // What is tinted shows nothing but its shape.
  for (const int height : {18, 36}) expectToTellCountsApart(26 * height / 18, height, Style::plain);
}

TEST(GlyphCanvas, WritesNinetyNineForMore) {
  const auto drawn = [](std::int64_t count) {
    GlyphCanvas canvas(22, 22);
    canvas.drawCount(count, GlyphCanvas::CountStyle::grounded);
    return canvas.pixels();
  };
  EXPECT_EQ(drawn(100), drawn(99));
  EXPECT_NE(drawn(99), drawn(98));
}

}  // namespace
}  // namespace kestrel
