#pragma once

#include <string_view>

#include "KestrelCore/Presentation/KestrelVisualState.h"
#include "KestrelCore/Presentation/PixelSpriteFrame.h"

namespace kestrel {

/// Draws a mascot. Every answer depends on the arguments alone, so that pictures can be kept.
class PixelAvatarProvider {
 public:
  virtual ~PixelAvatarProvider() = default;
  [[nodiscard]] virtual std::string_view id() const = 0;
  [[nodiscard]] virtual std::string_view displayName() const = 0;
  [[nodiscard]] virtual std::string_view author() const = 0;
  [[nodiscard]] virtual std::string_view version() const = 0;
  [[nodiscard]] virtual int spriteWidth() const = 0;
  [[nodiscard]] virtual int spriteHeight() const = 0;
  [[nodiscard]] virtual int frameCount(KestrelVisualState state) const = 0;
  /// Seconds per frame where the whole figure is shown.
  [[nodiscard]] virtual double frameDuration(KestrelVisualState state) const = 0;
  /// Any index: frames repeat.
  [[nodiscard]] virtual PixelSpriteFrame frame(KestrelVisualState state, int frameIndex) const = 0;

  // The same for one session.

  [[nodiscard]] int frameCount(AgentState state) const { return frameCount(visualStateFrom(state)); }
  [[nodiscard]] double frameDuration(AgentState state) const { return frameDuration(visualStateFrom(state)); }
  [[nodiscard]] PixelSpriteFrame frame(AgentState state, int frameIndex) const {
    return frame(visualStateFrom(state), frameIndex);
  }
};

}  // namespace kestrel
