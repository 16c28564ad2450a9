#include "KestrelApp/GlyphCanvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>

namespace kestrel {
namespace {

constexpr int kHeightPoints = 18;
constexpr int kSpriteSide = 16;
constexpr std::uint8_t kHairlineAlpha = 150;
constexpr std::uint8_t kCountGroundAlpha = 225;
constexpr std::int64_t kLargestCount = 99;
/// Digits higher than this share of the icon would outshine the mascot.
constexpr double kLargestDigitHeight = 0.5;

constexpr int kDigitWidth = 3;
constexpr int kDigitHeight = 5;
/// Rows from the top, the leftmost pixel in the highest bit.
constexpr std::array<std::array<std::uint8_t, kDigitHeight>, 10> kDigits{{
    {0b111, 0b101, 0b101, 0b101, 0b111},
    {0b010, 0b110, 0b010, 0b010, 0b111},
    {0b111, 0b001, 0b111, 0b100, 0b111},
    {0b111, 0b001, 0b111, 0b001, 0b111},
    {0b101, 0b101, 0b111, 0b001, 0b001},
    {0b111, 0b100, 0b111, 0b001, 0b111},
    {0b111, 0b100, 0b111, 0b101, 0b111},
    {0b111, 0b001, 0b001, 0b010, 0b010},
    {0b111, 0b101, 0b111, 0b101, 0b111},
    {0b111, 0b101, 0b111, 0b001, 0b111},
}};

PixelRGBA translucent(PixelRGBA colour, std::uint8_t alpha) {
  colour.a = alpha;
  return colour;
}

int gapOf(int scale) {
  return std::max(1, scale / 2);
}

}  // namespace

GlyphCanvas::GlyphCanvas(int points, int height)
    : width_(static_cast<int>(std::lround(static_cast<double>(points) * height / kHeightPoints))),
      height_(height),
      scale_(std::max(1, height / kSpriteSide)),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), PixelRGBA::clear) {}

std::size_t GlyphCanvas::indexOf(int x, int y) const {
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
}

PixelRGBA GlyphCanvas::pixelAt(int x, int y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return PixelRGBA::clear;
  return pixels_[indexOf(x, y)];
}

void GlyphCanvas::fill(int left, int top, int width, int height, PixelRGBA colour) {
  for (int y = std::max(top, 0); y < std::min(top + height, height_); ++y)
    for (int x = std::max(left, 0); x < std::min(left + width, width_); ++x) at(x, y) = colour;
}

void GlyphCanvas::drawFrame(const PixelSpriteFrame& frame) {
  const int left = (height_ - frame.width() * scale_) / 2;
  const int top = height_ - frame.height() * scale_;
  frameEnd_ = left + frame.width() * scale_;
  for (int y = 0; y < frame.height(); ++y) {
    for (int x = 0; x < frame.width(); ++x) {
      const PixelRGBA pixel = frame.pixelAt(x, y);
      if (pixel.a != 0) fill(left + x * scale_, top + y * scale_, scale_, scale_, pixel);
    }
  }
}

bool GlyphCanvas::isOpaque(int x, int y) const {
  return pixelAt(x, y).a == 255;
}

bool GlyphCanvas::touchesOpaque(int x, int y) const {
  return isOpaque(x - 1, y) || isOpaque(x + 1, y) || isOpaque(x, y - 1) || isOpaque(x, y + 1);
}

void GlyphCanvas::keepOutline() {
  const GlyphCanvas whole = *this;
  const auto isEdge = [&](int x, int y) {
    for (int step = 1; step <= scale_; ++step) {
      if (!whole.isOpaque(x - step, y) || !whole.isOpaque(x + step, y)) return true;
      if (!whole.isOpaque(x, y - step) || !whole.isOpaque(x, y + step)) return true;
    }
    return false;
  };
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      if (!isEdge(x, y)) at(x, y) = PixelRGBA::clear;
    }
  }
}

void GlyphCanvas::keepShape() {
  for (PixelRGBA& pixel : pixels_) {
    const bool isDark = pixel == PixelRGBA::black;
    pixel = isDark ? PixelRGBA::clear : translucent(PixelRGBA::black, pixel.a);
  }
}

void GlyphCanvas::addHairline() {
  const GlyphCanvas plain = *this;
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      if (plain.pixelAt(x, y).a == 0 && plain.touchesOpaque(x, y))
        at(x, y) = translucent(PixelRGBA::black, kHairlineAlpha);
    }
  }
}

void GlyphCanvas::drawCount(std::int64_t count) {
  const std::string text = std::to_string(std::min(count, kLargestCount));
  const int digits = static_cast<int>(text.size());
  const auto widthAt = [&](int scale) { return digits * kDigitWidth * scale + (digits - 1) * gapOf(scale); };
  const auto fits = [&](int scale) {
    return widthAt(scale) <= width_ - frameEnd_ && scale * kDigitHeight <= height_ * kLargestDigitHeight;
  };
  int scale = 1;
  while (fits(scale + 1)) ++scale;
  const int top = height_ - kDigitHeight * scale - scale_;
  // Its ground is one pixel larger on each side.
  int left = width_ - widthAt(scale) - 1;
  fill(left - 1, top - 1, widthAt(scale) + 2, kDigitHeight * scale + 2,
       translucent(PixelRGBA::black, kCountGroundAlpha));
  for (const char letter : text) {
    drawDigit(letter - '0', left, top, scale);
    left += kDigitWidth * scale + gapOf(scale);
  }
}

void GlyphCanvas::drawDigit(int digit, int left, int top, int scale) {
  const auto& rows = kDigits[static_cast<std::size_t>(digit)];
  for (int y = 0; y < kDigitHeight; ++y) {
    for (int x = 0; x < kDigitWidth; ++x) {
      const bool isSet = (rows[static_cast<std::size_t>(y)] >> (kDigitWidth - 1 - x) & 1) != 0;
      if (isSet) fill(left + x * scale, top + y * scale, scale, scale, PixelRGBA::white);
    }
  }
}

}  // namespace kestrel
