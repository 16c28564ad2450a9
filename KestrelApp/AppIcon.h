#pragma once

#include <array>
#include <string>

#include "KestrelCore/Presentation/PixelSpriteFrame.h"

class QIcon;
class QImage;

namespace kestrel {

/// The pictures' sides, in pixels, that desktops ask for.
inline constexpr std::array<int, 9> kAppIconSides{16, 22, 24, 32, 48, 64, 128, 256, 512};

/// The mascot awake, as the application's icon shows it: its body alone.
PixelSpriteFrame appIconSprite();

/// The mascot on a dark tile, its pixels as whole pixels of the picture; a square of `side` pixels.
QImage drawAppIcon(int side);
/// In the sizes that windows and lists of them show.
QIcon makeAppIcon();

/// The same for any size.
std::string appIconSvg();
/// The mascot's shape alone, for desktops that colour icons themselves.
std::string appIconSymbolicSvg();

}  // namespace kestrel
