#pragma once

#include "KestrelCore/Presentation/PixelAvatarProvider.h"

namespace kestrel {

/// The blob: a body of 10 by 10 pixels in a picture of 16 by 16, whose eyes show the mood.
class KestrelBlobAvatarProvider final : public PixelAvatarProvider {
 public:
  using PixelAvatarProvider::frame;
  using PixelAvatarProvider::frameCount;
  using PixelAvatarProvider::frameDuration;

  /// The one that every surface draws.
  static const KestrelBlobAvatarProvider& shared();

  [[nodiscard]] std::string_view id() const override { return "com.kestrel.avatar.blob"; }
  [[nodiscard]] std::string_view displayName() const override { return "The Kestrel Blob"; }
  [[nodiscard]] std::string_view author() const override { return "Kestrel Core"; }
  [[nodiscard]] std::string_view version() const override { return "1.1.0"; }
  [[nodiscard]] int spriteWidth() const override { return 16; }
  [[nodiscard]] int spriteHeight() const override { return 16; }
  [[nodiscard]] int frameCount(KestrelVisualState state) const override;
  [[nodiscard]] double frameDuration(KestrelVisualState state) const override;
  [[nodiscard]] PixelSpriteFrame frame(KestrelVisualState state, int frameIndex) const override;
};

}  // namespace kestrel
