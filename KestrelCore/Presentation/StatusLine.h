#pragma once

#include <string>

#include "KestrelCore/Policy/WakeDecision.h"
#include "KestrelCore/Power/HoldStatus.h"

namespace kestrel {

/// What a terminal shows of the moment, in one line.
struct StatusLine {
  std::string text;
  /// The same without the seconds of a countdown, which alone are no news where lines pile up.
  std::string withoutCountdown;

  friend bool operator==(const StatusLine&, const StatusLine&) = default;
};

/// The decision, and how far the system is seen to follow it: "Active (…) — … · in force (login manager)".
StatusLine statusLine(const WakeDecision& decision, const HoldStatus& hold);

/// A reason without the seconds that it counts down: "Release debounce (30s)".
std::string withoutCountdown(std::string text);

/// "in force (login manager)", "wanted: login manager is not running", "lost, taking it again: …"; empty
/// without a hold.
std::string describeHold(const HoldStatus& hold);

}  // namespace kestrel
