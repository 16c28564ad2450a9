#include "KestrelApp/AppIcon.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <string_view>

#include "KestrelApp/Theme.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

// Of the tile, in parts of its side.
constexpr double kCorner = 0.22;
constexpr double kBodyPart = 0.62;
/// Where a higher body leaves too little of the tile, there is none.
constexpr double kHighestBody = 0.85;
constexpr double kHighlightOpacity = 0.14;
/// In which the drawing for any size is written.
constexpr int kSvgSide = 512;
constexpr int kSymbolicSide = 16;

/// Where the open eyes and the mouth stand, from the body's top left pixel.
constexpr int kEyesX = 1;
constexpr int kEyesY = 4;
constexpr std::array<std::string_view, 4> kFace{"WK....WK", "KK....KK", "KK....KK", "...KK..."};

QColor colorOf(PixelRGBA pixel) {
  return {pixel.r, pixel.g, pixel.b, pixel.a};
}

QColor dark(Theme::Role role) {
  return Theme::of(Theme::Scheme::dark).color(role);
}

int pixelScale(int side, int columns) {
  // Small pictures rather get larger pixels.
  constexpr double kRoundedUp = 0.15;
  return std::max(static_cast<int>(std::lround(side * kBodyPart / columns + kRoundedUp)), 1);
}

/// Calls back with the place of each opaque pixel of the sprite on a tile.
template <typename Draw>
void forEachPixel(const PixelSpriteFrame& sprite, int side, const Draw& draw) {
  const int scale = pixelScale(side, sprite.width());
  const int left = (side - sprite.width() * scale) / 2;
  const int top = (side - sprite.height() * scale) / 2;
  for (int y = 0; y < sprite.height(); ++y) {
    for (int x = 0; x < sprite.width(); ++x) {
      const PixelRGBA pixel = sprite.pixelAt(x, y);
      if (pixel.a > 0) draw(left + x * scale, top + y * scale, scale, pixel);
    }
  }
}

void drawTile(QPainter& painter, int side) {
  QLinearGradient ground(0, 0, 0, side);
  ground.setColorAt(0, dark(Theme::Role::hairline));
  ground.setColorAt(1, dark(Theme::Role::window));
  QPainterPath tile;
  tile.addRoundedRect(0, 0, side, side, side * kCorner, side * kCorner);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(tile, ground);
  QColor shine = dark(Theme::Role::text);
  shine.setAlphaF(static_cast<float>(kHighlightOpacity));
  QColor none = shine;
  none.setAlpha(0);
  QLinearGradient highlight(0, 0, 0, side / 2.0);
  highlight.setColorAt(0, shine);
  highlight.setColorAt(1, none);
  painter.fillPath(tile, highlight);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

std::string svgRect(int x, int y, int size, PixelRGBA pixel) {
  return fmt::format("  <rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" fill=\"{}\"/>\n", x, y, size, size,
                     colorOf(pixel).name().toStdString());
}

std::string svgStop(double offset, const QColor& color, double opacity) {
  return fmt::format("<stop offset=\"{}\" stop-color=\"{}\" stop-opacity=\"{}\"/>", offset,
                     color.name().toStdString(), opacity);
}

}  // namespace

PixelSpriteFrame appIconSprite() {
  const PixelSpriteFrame frame = KestrelBlobAvatarProvider::shared().frame(KestrelVisualState::idle, 0);
  int left = frame.width();
  int right = 0;
  int top = frame.height();
  int bottom = 0;
  for (int y = 0; y < frame.height(); ++y) {
    for (int x = 0; x < frame.width(); ++x) {
      if (frame.pixelAt(x, y).a == 0) continue;
      left = std::min(left, x);
      right = std::max(right, x);
      top = std::min(top, y);
      bottom = std::max(bottom, y);
    }
  }
  std::vector<PixelRGBA> pixels;
  for (int y = top; y <= bottom; ++y) {
    for (int x = left; x <= right; ++x) {
      const PixelRGBA pixel = frame.pixelAt(x, y);
      // It sleeps in this frame.
      pixels.push_back(pixel == PixelRGBA::black ? PixelRGBA::blobCyan : pixel);
    }
  }
  const int width = right - left + 1;
  for (std::size_t row = 0; row < kFace.size(); ++row) {
    for (std::size_t column = 0; column < kFace[row].size(); ++column) {
      const char letter = kFace[row][column];
      if (letter == '.') continue;
      const std::size_t at = (row + kEyesY) * static_cast<std::size_t>(width) + column + kEyesX;
      pixels.at(at) = letter == 'W' ? PixelRGBA::white : PixelRGBA::black;
    }
  }
  return {width, bottom - top + 1, std::move(pixels)};
}

QImage drawAppIcon(int side) {
  QImage image(side, side, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  const PixelSpriteFrame sprite = appIconSprite();
  if (pixelScale(side, sprite.width()) * sprite.height() < side * kHighestBody) drawTile(painter, side);
  forEachPixel(sprite, side, [&painter](int x, int y, int size, PixelRGBA pixel) {
    painter.fillRect(x, y, size, size, colorOf(pixel));
  });
  return image;
}

QIcon makeAppIcon() {
  QIcon icon;
  constexpr int kLargest = 128;
  for (const int side : kAppIconSides) {
    if (side > kLargest) break;
    icon.addPixmap(QPixmap::fromImage(drawAppIcon(side)));
  }
  return icon;
}

std::string appIconSvg() {
  const QColor shine = dark(Theme::Role::text);
  std::string svg = fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{0}\" viewBox=\"0 0 {0} {0}\">\n"
      " <defs>\n"
      "  <linearGradient id=\"ground\" x2=\"0\" y2=\"1\">{1}{2}</linearGradient>\n"
      "  <linearGradient id=\"highlight\" x2=\"0\" y2=\"1\">{3}{4}</linearGradient>\n"
      " </defs>\n",
      kSvgSide, svgStop(0, dark(Theme::Role::hairline), 1), svgStop(1, dark(Theme::Role::window), 1),
      svgStop(0, shine, kHighlightOpacity), svgStop(0.5, shine, 0));
  for (const char* fill : {"ground", "highlight"}) {
    svg += fmt::format(" <rect width=\"{0}\" height=\"{0}\" rx=\"{1:.0f}\" fill=\"url(#{2})\"/>\n", kSvgSide,
                       kSvgSide * kCorner, fill);
  }
  // No soft edges between the pixels.
  svg += " <g shape-rendering=\"crispEdges\">\n";
  forEachPixel(appIconSprite(), kSvgSide,
               [&svg](int x, int y, int size, PixelRGBA pixel) { svg += svgRect(x, y, size, pixel); });
  return svg + " </g>\n</svg>\n";
}

std::string appIconSymbolicSvg() {
  const PixelSpriteFrame sprite = appIconSprite();
  const int left = (kSymbolicSide - sprite.width()) / 2;
  const int top = (kSymbolicSide - sprite.height()) / 2;
  std::string path;
  for (int y = 0; y < sprite.height(); ++y) {
    for (int x = 0; x < sprite.width(); ++x) {
      const PixelRGBA pixel = sprite.pixelAt(x, y);
      // The face is left open.
      const bool isFace = pixel == PixelRGBA::black || pixel == PixelRGBA::white;
      if (pixel.a > 0 && !isFace) path += fmt::format("M{} {}h1v1h-1z", left + x, top + y);
    }
  }
  return fmt::format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{0}\" viewBox=\"0 0 {0} {0}\">\n"
      " <path fill=\"#000\" shape-rendering=\"crispEdges\" d=\"{1}\"/>\n</svg>\n",
      kSymbolicSide, path);
}

}  // namespace kestrel
