#pragma once

#include <string>

#include "KestrelCore/Power/HoldStatus.h"
#include "KestrelCore/Presentation/KestrelDisplayState.h"
#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

/// Whether the machine is kept awake, by whom and for how long.
struct HeadlineModel {
  KestrelVisualState mood = KestrelVisualState::idle;
  /// "Awake", "Ready", "Blocked", "Paused"; "Not held yet" while a hold is wanted and not in force.
  std::string headline;
  Tone tone = Tone::normal;
  std::string reason;
  /// "for 12 min 04 s · lid hold on"; may be empty.
  std::string detail;

  friend bool operator==(const HeadlineModel&, const HeadlineModel&) = default;
};

HeadlineModel headlineModel(const KestrelDisplayState& display, const HoldStatus& hold);

}  // namespace kestrel
