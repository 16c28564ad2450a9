#pragma once

#include <functional>

#include "KestrelCore/Settings/SettingsStore.h"

namespace kestrel {

/// What a person can do from any surface. Everything is a change of a setting and an evaluation at once,
/// whose result the surfaces show. Main thread.
class SurfaceActions {
 public:
  static constexpr double kShortPauseSeconds = 1800;
  static constexpr double kLongPauseSeconds = 3600;

  /// The settings outlive this object.
  SurfaceActions(SettingsStore& settings, std::function<void()> evaluate)
      : settings_(settings), evaluate_(std::move(evaluate)) {}

  void pause(double seconds) const { apply(settings_.pause(seconds)); }
  void resume() const { apply(settings_.resume()); }
  void setMasterEnabled(bool isOn) const { apply(settings_.setMasterEnabled(isOn)); }
  void toggleMaster() const { setMasterEnabled(!settings_.masterEnabled()); }
  void setManualHold(bool isOn) const { apply(settings_.setManualHoldEnabled(isOn)); }

 private:
  // A setting that could not be kept has been logged; the evaluation shows what is in force.
  void apply(bool) const { evaluate_(); }

  SettingsStore& settings_;
  const std::function<void()> evaluate_;
};

}  // namespace kestrel
