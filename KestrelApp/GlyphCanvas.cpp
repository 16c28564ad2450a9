#include "KestrelApp/GlyphCanvas.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace kestrel {
namespace {

constexpr int kSpriteSide = 16;
constexpr std::uint8_t kHairlineAlpha = 150;
constexpr std::uint8_t kCountGroundAlpha = 235;
constexpr std::int64_t kLargestCount = 99;
/// A count that takes more of the icon would outshine the mascot.
constexpr double kLargestCountHeight = 0.4;

/// Rows from the top, the leftmost pixel in the highest of `width` bits.
struct Digits {
  int width;
  int height;
  std::array<std::array<std::uint8_t, 7>, 10> rows;
};
constexpr Digits kSmallDigits{3,
                              5,
                              {{{0b111, 0b101, 0b101, 0b101, 0b111},
                                {0b010, 0b110, 0b010, 0b010, 0b111},
                                {0b111, 0b001, 0b111, 0b100, 0b111},
                                {0b111, 0b001, 0b111, 0b001, 0b111},
                                {0b101, 0b101, 0b111, 0b001, 0b001},
                                {0b111, 0b100, 0b111, 0b001, 0b111},
                                {0b111, 0b100, 0b111, 0b101, 0b111},
                                {0b111, 0b001, 0b001, 0b010, 0b010},
                                {0b111, 0b101, 0b111, 0b101, 0b111},
                                {0b111, 0b101, 0b111, 0b001, 0b111}}}};
constexpr Digits kTallDigits{4,
                             7,
                             {{{0b0110, 0b1001, 0b1001, 0b1001, 0b1001, 0b1001, 0b0110},
                               {0b0010, 0b0110, 0b1010, 0b0010, 0b0010, 0b0010, 0b0111},
                               {0b0110, 0b1001, 0b0001, 0b0010, 0b0100, 0b1000, 0b1111},
                               {0b1110, 0b0001, 0b0001, 0b0110, 0b0001, 0b0001, 0b1110},
                               {0b0010, 0b0110, 0b1010, 0b1010, 0b1111, 0b0010, 0b0010},
                               {0b1111, 0b1000, 0b1110, 0b0001, 0b0001, 0b1001, 0b0110},
                               {0b0110, 0b1000, 0b1000, 0b1110, 0b1001, 0b1001, 0b0110},
                               {0b1111, 0b0001, 0b0001, 0b0010, 0b0010, 0b0100, 0b0100},
                               {0b0110, 0b1001, 0b1001, 0b0110, 0b1001, 0b1001, 0b0110},
                               {0b0110, 0b1001, 0b1001, 0b0111, 0b0001, 0b0001, 0b0110}}}};

PixelRGBA translucent(PixelRGBA colour, std::uint8_t alpha) {
  colour.a = alpha;
  return colour;
}

/// How a count is written.
struct Lettering {
  Digits digits;
  int scale;

  [[nodiscard]] int height() const { return digits.height * scale; }
  [[nodiscard]] int gap() const { return std::max(1, scale / 2); }
  /// Of the ground, on each side. It has to last when a panel scales the picture down.
  [[nodiscard]] int margin() const { return std::min(scale, 2); }
  [[nodiscard]] int widthOf(int letters) const {
    return letters * digits.width * scale + (letters - 1) * gap();
  }
};

}  // namespace

GlyphCanvas::GlyphCanvas(int width, int height)
    : width_(width),
      height_(height),
      scale_(std::max(1, height / kSpriteSide)),
      frameBottom_(height),
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

void GlyphCanvas::drawFrame(const PixelSpriteFrame& frame, bool leavesRoom) {
  const int left = leavesRoom ? 0 : (height_ - frame.width() * scale_) / 2;
  const int top = (height_ - frame.height() * scale_ + 1) / 2;
  frameEnd_ = left + frame.width() * scale_;
  frameBottom_ = top + frame.height() * scale_;
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

bool GlyphCanvas::isNearOpaque(int x, int y, int distance) const {
  for (int step = 1; step <= distance; ++step) {
    if (isOpaque(x - step, y) || isOpaque(x + step, y)) return true;
    if (isOpaque(x, y - step) || isOpaque(x, y + step)) return true;
  }
  return false;
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
  // Many panels take the largest picture and scale it down, and shall still find it there.
  const int thickness = (scale_ + 1) / 2;
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      if (plain.pixelAt(x, y).a == 0 && plain.isNearOpaque(x, y, thickness))
        at(x, y) = translucent(PixelRGBA::black, kHairlineAlpha);
    }
  }
}

void GlyphCanvas::drawCount(std::int64_t count, CountStyle style) {
  const std::string text = std::to_string(std::min(count, kLargestCount));
  const int letters = static_cast<int>(text.size());
  const bool isGrounded = style == CountStyle::grounded;
  const int room = isGrounded ? width_ : width_ - frameEnd_;
  Lettering lettering{kSmallDigits, 1};
  for (const Lettering& larger : {Lettering{kTallDigits, 1}, Lettering{kSmallDigits, 2},
                                  Lettering{kTallDigits, 2}, Lettering{kSmallDigits, 3}}) {
    if (larger.widthOf(letters) <= room && larger.height() <= height_ * kLargestCountHeight)
      lettering = larger;
  }
  int left = width_ - lettering.widthOf(letters);
  int top = frameBottom_ - lettering.height();
  if (isGrounded) {
    const int margin = lettering.margin();
    left -= margin, top -= margin;
    fill(left - margin, top - margin, width_, lettering.height() + 2 * margin,
         translucent(PixelRGBA::black, kCountGroundAlpha));
  }
  const PixelRGBA colour = isGrounded ? PixelRGBA::white : PixelRGBA::black;
  for (const char letter : text) {
    const auto& rows = lettering.digits.rows[static_cast<std::size_t>(letter - '0')];
    for (int y = 0; y < lettering.digits.height; ++y) {
      const int rowTop = top + y * lettering.scale;
      drawRow(rows[static_cast<std::size_t>(y)], lettering.digits.width, left, rowTop, lettering.scale,
              colour);
    }
    left += lettering.digits.width * lettering.scale + lettering.gap();
  }
}

void GlyphCanvas::drawRow(unsigned bits, int width, int left, int top, int scale, PixelRGBA colour) {
  for (int x = 0; x < width; ++x) {
    if ((bits >> (width - 1 - x) & 1U) != 0) fill(left + x * scale, top, scale, scale, colour);
  }
}

}  // namespace kestrel
