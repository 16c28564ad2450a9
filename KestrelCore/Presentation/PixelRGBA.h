#pragma once

#include <cstdint>

#include "KestrelCore/Support/JsonForward.h"

namespace kestrel {

/// One pixel, not premultiplied.
struct PixelRGBA {
  std::uint8_t r = 0;
  std::uint8_t g = 0;
  std::uint8_t b = 0;
  std::uint8_t a = 0;

  static const PixelRGBA clear;
  static const PixelRGBA white;
  /// A blue-black.
  static const PixelRGBA black;
  static const PixelRGBA blobCyan;
  /// The same colour as `blobCyan`, for what stands on a terminal.
  static const PixelRGBA terminalCyan;
  static const PixelRGBA blobCyanDark;
  static const PixelRGBA blobCyanGlow;
  static const PixelRGBA terminalGreen;
  static const PixelRGBA agentPurple;
  static const PixelRGBA amber;
  static const PixelRGBA red;
  static const PixelRGBA skinTone;
  static const PixelRGBA hairDark;
  static const PixelRGBA deskWood;
  static const PixelRGBA laptopSilver;
  static const PixelRGBA chairGrey;

  friend bool operator==(const PixelRGBA&, const PixelRGBA&) = default;
};

inline constexpr PixelRGBA PixelRGBA::clear{0, 0, 0, 0};
inline constexpr PixelRGBA PixelRGBA::white{255, 255, 255, 255};
inline constexpr PixelRGBA PixelRGBA::black{15, 17, 23, 255};
inline constexpr PixelRGBA PixelRGBA::blobCyan{0, 242, 254, 255};
inline constexpr PixelRGBA PixelRGBA::terminalCyan{0, 242, 254, 255};
inline constexpr PixelRGBA PixelRGBA::blobCyanDark{0, 180, 216, 255};
inline constexpr PixelRGBA PixelRGBA::blobCyanGlow{114, 239, 255, 180};
inline constexpr PixelRGBA PixelRGBA::terminalGreen{0, 255, 163, 255};
inline constexpr PixelRGBA PixelRGBA::agentPurple{147, 51, 234, 255};
inline constexpr PixelRGBA PixelRGBA::amber{251, 191, 36, 255};
inline constexpr PixelRGBA PixelRGBA::red{239, 68, 68, 255};
inline constexpr PixelRGBA PixelRGBA::skinTone{255, 219, 172, 255};
inline constexpr PixelRGBA PixelRGBA::hairDark{55, 65, 81, 255};
inline constexpr PixelRGBA PixelRGBA::deskWood{120, 80, 50, 255};
inline constexpr PixelRGBA PixelRGBA::laptopSilver{180, 190, 205, 255};
inline constexpr PixelRGBA PixelRGBA::chairGrey{75, 85, 99, 255};

Json encode(const PixelRGBA& pixel);
/// Throws DecodingError.
PixelRGBA decodePixelRGBA(const Json& object);

}  // namespace kestrel
