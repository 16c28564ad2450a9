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
  /// A clear picture. `points` is the width in points at a height of 18.
  GlyphCanvas(int points, int height);

  /// The frame enlarged by whole pixels, bottom-centred in the square of 18 points at the left.
  void drawFrame(const PixelSpriteFrame& frame);
  /// What is opaque loses all but its edge, of one pixel of the frame.
  void keepOutline();
  /// Everything dark becomes clear: what is left is a shape to be tinted.
  void keepShape();
  /// A translucent dark line around what is opaque. Vanishes on a dark panel.
  void addHairline();
  /// In the width beyond the frame, as large as fits; white on a dark ground. More than 99 is 99.
  void drawCount(std::int64_t count);

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  /// Row by row from the top left.
  [[nodiscard]] const std::vector<PixelRGBA>& pixels() const { return pixels_; }
  /// `clear` outside the picture.
  [[nodiscard]] PixelRGBA pixelAt(int x, int y) const;

 private:
  void fill(int left, int top, int width, int height, PixelRGBA colour);
  void drawDigit(int digit, int left, int top, int scale);
  [[nodiscard]] std::size_t indexOf(int x, int y) const;
  PixelRGBA& at(int x, int y) { return pixels_[indexOf(x, y)]; }
  [[nodiscard]] bool isOpaque(int x, int y) const;
  [[nodiscard]] bool touchesOpaque(int x, int y) const;

  int width_;
  int height_;
  /// Device pixels for one of the frame's.
  int scale_;
  /// Behind the frame's last column.
  int frameEnd_ = 0;
  std::vector<PixelRGBA> pixels_;
};

}  // namespace kestrel
