#pragma once

#include <vector>

#include "KestrelCore/Presentation/PixelRGBA.h"
#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// One picture, row by row from the top left.
class PixelSpriteFrame {
 public:
  /// A shorter list of pixels is filled up with `clear`, a longer one is cut. A negative size counts as 0,
  /// one beyond 1,024 as 1,024.
  PixelSpriteFrame(int width, int height, std::vector<PixelRGBA> pixels);

  [[nodiscard]] int width() const { return width_; }
  [[nodiscard]] int height() const { return height_; }
  [[nodiscard]] const std::vector<PixelRGBA>& pixels() const { return pixels_; }
  /// `clear` outside the picture.
  [[nodiscard]] PixelRGBA pixelAt(int x, int y) const;

  friend bool operator==(const PixelSpriteFrame&, const PixelSpriteFrame&) = default;

 private:
  int width_;
  int height_;
  std::vector<PixelRGBA> pixels_;
};

Json encode(const PixelSpriteFrame& frame);
/// Throws DecodingError.
PixelSpriteFrame decodePixelSpriteFrame(const Json& object);

}  // namespace kestrel
