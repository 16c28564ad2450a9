#include "KestrelCore/Presentation/PixelSpriteFrame.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "KestrelCore/Support/DecodingError.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

/// Far beyond any sprite, and small enough for a picture of that size to be made.
constexpr int kMaximumSide = 1024;

std::uint8_t component(const Json& object, std::string_view key) {
  const std::int64_t value = requiredInteger(object, key);
  if (value < 0 || value > 255) throw DecodingError("a colour component is not within 0 to 255");
  return static_cast<std::uint8_t>(value);
}

int side(const Json& object, std::string_view key) {
  const std::int64_t value = requiredInteger(object, key);
  if (value < 0 || value > kMaximumSide) throw DecodingError("a picture's side is not within 0 to 1,024");
  return static_cast<int>(value);
}

}  // namespace

Json encode(const PixelRGBA& pixel) {
  return {{"r", pixel.r}, {"g", pixel.g}, {"b", pixel.b}, {"a", pixel.a}};
}

PixelRGBA decodePixelRGBA(const Json& object) {
  return {component(object, "r"), component(object, "g"), component(object, "b"), component(object, "a")};
}

PixelSpriteFrame::PixelSpriteFrame(int width, int height, std::vector<PixelRGBA> pixels)
    : width_(std::clamp(width, 0, kMaximumSide)),
      height_(std::clamp(height, 0, kMaximumSide)),
      pixels_(std::move(pixels)) {
  pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_), PixelRGBA::clear);
}

PixelRGBA PixelSpriteFrame::pixelAt(int x, int y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return PixelRGBA::clear;
  return pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                 static_cast<std::size_t>(x)];
}

Json encode(const PixelSpriteFrame& frame) {
  Json pixels = Json::array();
  for (const auto& pixel : frame.pixels()) pixels.push_back(encode(pixel));
  return {{"width", frame.width()}, {"height", frame.height()}, {"pixels", std::move(pixels)}};
}

PixelSpriteFrame decodePixelSpriteFrame(const Json& object) {
  const int width = side(object, "width");
  const int height = side(object, "height");
  const auto list = object.find("pixels");
  if (list == object.end() || !list->is_array()) throw DecodingError("a picture has no list of pixels");
  std::vector<PixelRGBA> pixels;
  pixels.reserve(list->size());
  for (const auto& pixel : *list) pixels.push_back(decodePixelRGBA(pixel));
  return {width, height, std::move(pixels)};
}

}  // namespace kestrel
