#include "KestrelCore/Presentation/HeadlineModel.h"

#include <string_view>

#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Presentation/StatusLine.h"

namespace kestrel {
namespace {

/// What stands in the hold's way, in the words of the status line; may be empty.
std::string obstacles(const HoldStatus& hold) {
  const std::string description = describeHold(hold);
  const auto colon = description.find(": ");
  return colon == std::string::npos ? "" : description.substr(colon + 2);
}

/// Some service still has to answer, and none has said no. The lid is another matter.
bool isBeingAsked(const HoldStatus& hold) {
  bool isPending = false;
  for (const HoldEvidence& entry : hold.by) {
    if (entry.kind == HoldKind::lid) continue;
    if (entry.state != HoldEvidenceState::pending) return false;
    isPending = true;
  }
  return isPending;
}

void describeActiveHold(HeadlineModel& model, const KestrelDisplayState& display,
                        const WakeDecision::Hold& wanted) {
  model.headline = "Awake";
  model.reason = wanted.reason;
  model.detail = "for " + durationText(display.elapsedProtectionSeconds);
  if (display.lidHoldActive) {
    model.detail += " · lid hold on";
  } else if (wanted.requiresDeepHold) {
    model.detail += " · lid hold off";
  }
}

/// What the system does not confirm is never shown as protection.
void describeMissingHold(HeadlineModel& model, const HoldStatus& hold) {
  model.headline = "Not held yet";
  const std::string why = obstacles(hold);
  if (isBeingAsked(hold)) {
    model.tone = Tone::muted;
    model.reason = "Wants to hold";
    model.detail = why;
    return;
  }
  model.tone = Tone::bad;
  if (hold.state == HoldState::lost) {
    model.reason = why.empty() ? "The hold was lost, taking it again" : "The hold was lost: " + why;
  } else {
    model.reason = "Wants to hold, but " + (why.empty() ? "no power service answered" : why);
  }
}

void describeBlock(HeadlineModel& model, const KestrelDisplayState& display, SafetyBlock block) {
  const std::string_view text = rawValue(block);
  model.reason = std::string(text);
  model.headline = block == SafetyBlock::paused ? "Paused" : "Blocked";
  if (block == SafetyBlock::paused && display.pauseRemainingSeconds) {
    model.detail = durationText(*display.pauseRemainingSeconds) + " left";
  }
  // What the person chose is no alarm.
  const bool isChosen = block == SafetyBlock::paused || block == SafetyBlock::masterDisabled;
  model.tone = isChosen ? Tone::muted : Tone::bad;
}

}  // namespace

HeadlineModel headlineModel(const KestrelDisplayState& display, const HoldStatus& hold) {
  HeadlineModel model;
  model.mood = display.visualState;
  if (const auto* wanted = display.decision.asHold()) {
    if (hold.state == HoldState::inForce) {
      describeActiveHold(model, display, *wanted);
    } else {
      describeMissingHold(model, hold);
    }
  } else if (const auto* release = display.decision.asRelease()) {
    model.headline = "Ready";
    model.reason = release->reason;
  } else {
    describeBlock(model, display, display.decision.asBlocked()->block);
  }
  return model;
}

}  // namespace kestrel
