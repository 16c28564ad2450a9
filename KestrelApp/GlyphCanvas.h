#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "KestrelCore/Presentation/PixelRGBA.h"
#include "KestrelCore/Presentation/PixelSpriteFrame.h"

namespace kestrel {

/// One size of the status icon while it is drawn, in whole device pixels.
class GlyphCanvas {
 public:
  /// A clear picture.
  GlyphCanvas(int width, int height);

  /// The frame enlarged by whole pixels, at half height; in the middle of the square at the left, or at the
  /// left edge where a count needs the rest.
  void drawFrame(const PixelSpriteFrame& frame, bool leavesRoom);
  /// What is opaque loses all but its edge, of one pixel of the frame.
  void keepOutline();
  /// Everything dark becomes clear: what is left is a shape to be tinted.
  void keepShape();
  /// A translucent dark line around what is opaque. Vanishes on a dark panel.
  void addHairline();
  /// At the right above the frame's last row, as large as is fit: black in the width beyond the frame, or
  /// white on a dark ground, which may cover some of the frame. More than 99 is 99.
  enum class CountStyle { plain, grounded };
  void drawCount(std::int64_t count, CountStyle style);

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  /// Row by row from the top left.
  [[nodiscard]] const std::vector<PixelRGBA>& pixels() const { return pixels_; }
  /// `clear` outside the picture.
  [[nodiscard]] PixelRGBA pixelAt(int x, int y) const;

 private:
  void fill(int left, int top, int width, int height, PixelRGBA colour);
  /// Pixels of one size in a row, for the bits that are set; the leftmost is the highest of `width` bits.
  void drawRow(unsigned bits, int width, int left, int top, int scale, PixelRGBA colour);
  [[nodiscard]] std::size_t indexOf(int x, int y) const;
  PixelRGBA& at(int x, int y) { return pixels_[indexOf(x, y)]; }
  [[nodiscard]] bool isOpaque(int x, int y) const;
  [[nodiscard]] bool isNearOpaque(int x, int y, int distance) const;

  int width_;
  int height_;
  /// Device pixels for one of the frame's.
  int scale_;
  /// Behind the frame's last column and row.
  int frameEnd_ = 0;
  int frameBottom_;
  std::vector<PixelRGBA> pixels_;
};

}  // namespace kestrel
