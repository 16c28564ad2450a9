#pragma once

#include <string_view>

#include "KestrelCore/Presentation/KestrelDisplayState.h"

namespace kestrel {

/// A place that shows the state. Main thread.
class StatusSurface {
 public:
  virtual ~StatusSurface() = default;
  [[nodiscard]] virtual std::string_view surfaceIdentifier() const = 0;
  /// Called after each evaluation, with the same state as before when nothing changed.
  virtual void render(const KestrelDisplayState& state) = 0;
};

// Places that are reserved and drawn elsewhere: rendering them does nothing.

class MenuBarStatusSurface final : public StatusSurface {
 public:
  [[nodiscard]] std::string_view surfaceIdentifier() const override { return "com.kestrel.surface.menubar"; }
  void render(const KestrelDisplayState&) override {}
};

class PopoverStatusSurface final : public StatusSurface {
 public:
  [[nodiscard]] std::string_view surfaceIdentifier() const override { return "com.kestrel.surface.popover"; }
  void render(const KestrelDisplayState&) override {}
};

class NotchStatusSurface final : public StatusSurface {
 public:
  [[nodiscard]] std::string_view surfaceIdentifier() const override { return "com.kestrel.surface.notch"; }
  void render(const KestrelDisplayState&) override {}
};

}  // namespace kestrel
