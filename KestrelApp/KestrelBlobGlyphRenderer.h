#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "KestrelCore/Presentation/KestrelVisualState.h"
#include "KestrelCore/Presentation/PixelAvatarProvider.h"
#include "KestrelCore/Support/Mutex.h"

class QIcon;
class QSize;

namespace kestrel {

/// Draws the mascot as a status icon, with the number of agents at work to its right, in each of the sizes
/// that trays ask for. A picture is drawn once and kept. From any thread that may draw.
class KestrelBlobGlyphRenderer {
 public:
  /// Where the system tints icons itself only the shape counts; elsewhere a hairline sets it off from light
  /// and dark panels. The provider outlives this object.
  KestrelBlobGlyphRenderer(const PixelAvatarProvider& provider, bool isTinted)
      : provider_(provider), isTinted_(isTinted) {}

  /// An icon of 18 points' height. Of a disabled one there is only the body's outline.
  QIcon createStatusIcon(KestrelVisualState state, int frameIndex, std::int64_t activeCount, bool isDisabled);

  /// Width and height in points; the width beyond 18 is for the count.
  static QSize iconSize(KestrelVisualState state, std::int64_t activeCount);
  /// In device pixels, where icons are so high. Hosts that do not tint icons scale what is wider than high
  /// down into a square, which blurs it: there the picture is one, and the count covers its corner.
  [[nodiscard]] QSize pictureSize(KestrelVisualState state, std::int64_t activeCount, int height) const;

 private:
  const PixelAvatarProvider& provider_;
  const bool isTinted_;
  Mutex lock_;
  std::map<std::string, std::shared_ptr<const QIcon>> cache_ KESTREL_GUARDED_BY(lock_);
};

}  // namespace kestrel
