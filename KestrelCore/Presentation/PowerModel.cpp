#include "KestrelCore/Presentation/PowerModel.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string_view>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Presentation/StatusLine.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

PowerFact holdOf(const PowerFacts& facts) {
  if (const auto* blocked = facts.decision.asBlocked()) {
    return {"Nothing is held", std::string(rawValue(blocked->block)), Tone::bad};
  }
  const auto* hold = facts.decision.asHold();
  if (hold == nullptr) return {"Nothing is held", facts.decision.asRelease()->reason, Tone::muted};
  const bool isInForce = facts.hold.state == HoldState::inForce;
  return {hold->reason, describeHold(facts.hold), isInForce ? Tone::good : Tone::warn};
}

AssertionRow assertionOf(const HoldEvidence& evidence) {
  struct Look {
    std::string_view text;
    Tone tone;
  };
  constexpr std::array<std::string_view, 5> kPurposes{
      "Against idle sleep", "Against any sleep", "Against the display's sleep",
      "Against sleep with the lid closed", "Against idle sleep of the desktop"};
  constexpr std::array<Look, 5> kLooks{{{"In force", Tone::good},
                                        {"Asked for", Tone::muted},
                                        {"Refused", Tone::bad},
                                        {"Not available", Tone::warn},
                                        {"Lost", Tone::bad}}};
  const Look& look = kLooks[static_cast<std::size_t>(evidence.state)];
  return {evidence.service, std::string(kPurposes[static_cast<std::size_t>(evidence.kind)]),
          std::string(look.text), evidence.detail, look.tone};
}

std::string batteryText(const PowerFacts& facts) {
  const auto& power = facts.power;
  if (!facts.powerSource) return "Nothing tells of the power supply";
  if (!power.batteryPercent) return power.isOnAC ? "No battery, on mains power" : "Battery level unknown";
  std::string left;
  if (power.timeRemainingMinutes && !power.isOnAC) {
    left = durationText(static_cast<double>(*power.timeRemainingMinutes) * 60) + " left";
  }
  const std::string state = power.isCharging ? "charging" : power.isOnAC ? "on mains power" : "on battery";
  return dotted({fmt::format("{} %", *power.batteryPercent), state, left});
}

BatteryBar batteryOf(const PowerFacts& facts) {
  const PolicyConfiguration settings = facts.settings.clamped();
  const std::int64_t resume = settings.batteryFloorPercent + settings.batteryHysteresisPercent;
  const auto part = [](std::int64_t percent) {
    return static_cast<double>(std::clamp<std::int64_t>(percent, 0, 100)) / 100;
  };
  BatteryBar bar;
  bar.floor = part(settings.batteryFloorPercent);
  bar.resume = part(resume);
  bar.text = batteryText(facts);
  bar.explanation = fmt::format("On battery, protection stops at {} % and resumes at {} %",
                                settings.batteryFloorPercent, resume);
  const auto& percent = facts.power.batteryPercent;
  if (!facts.powerSource || !percent) {
    bar.tone = Tone::muted;
    return bar;
  }
  bar.level = part(*percent);
  const bool isSafe = facts.power.isOnAC || facts.power.isCharging;
  if (isSafe) {
    bar.tone = Tone::good;
  } else if (*percent <= resume) {
    bar.tone = *percent <= settings.batteryFloorPercent ? Tone::bad : Tone::warn;
  }
  return bar;
}

struct Heat {
  std::string_view name;
  std::string_view meaning;
  Tone tone;
};
constexpr std::array<Heat, 4> kHeats{{{"Nominal", "Cool enough", Tone::good},
                                      {"Fair", "Warm; protection goes on", Tone::normal},
                                      {"Serious", "Hot; protection goes on", Tone::warn},
                                      {"Critical", "Too hot; protection stops", Tone::bad}}};

std::vector<ThermalStep> ladderOf(const PowerFacts& facts) {
  std::vector<ThermalStep> ladder;
  const auto current = static_cast<std::size_t>(facts.thermalState);
  for (std::size_t i = 0; facts.thermalSource && i < kHeats.size(); ++i) {
    ladder.push_back({std::string(kHeats[i].name), i == current, i <= current, kHeats[i].tone});
  }
  return ladder;
}

PowerFact thermalOf(const PowerFacts& facts) {
  if (!facts.thermalSource) return {"Temperature unknown", "No sensor tells of heat", Tone::muted};
  const Heat& heat = kHeats[static_cast<std::size_t>(facts.thermalState)];
  return {std::string(heat.name), std::string(heat.meaning), heat.tone};
}

PowerFact lidOf(const PowerFacts& facts) {
  if (!facts.lidSource || !facts.lidClosed) {
    return {"Lid unknown", "This computer has none, or nothing tells of it", Tone::muted};
  }
  return {*facts.lidClosed ? "Lid closed" : "Lid open", "", Tone::normal};
}

PowerFact helperOf(const PowerFacts& facts) {
  if (!facts.helper) return {"The helper was not asked yet", "", Tone::muted};
  const DeepSleepStatus& helper = *facts.helper;
  if (!helper.isHelperInstalled) {
    return {"Helper not installed", "Without it, closing the lid puts the computer to sleep", Tone::muted};
  }
  if (!helper.isDeepHoldActive) return {"Helper ready", "It holds nothing now", Tone::normal};
  std::string lease;
  if (helper.leaseExpiresAt) {
    const double left = *helper.leaseExpiresAt - facts.now;
    lease = left > 0 ? fmt::format("Lease ends in {} unless it is renewed", durationText(left))
                     : "Lease has ended";
  }
  const bool isOff = helper.currentSystemSleepDisabled;
  return {isOff ? "Holding with the lid closed" : "Asked to hold, sleep is not yet switched off", lease,
          isOff ? Tone::good : Tone::warn};
}

}  // namespace

PowerModel powerModel(const PowerFacts& facts) {
  PowerModel model;
  model.hold = holdOf(facts);
  for (const auto& evidence : facts.hold.by) model.assertions.push_back(assertionOf(evidence));
  model.battery = batteryOf(facts);
  model.thermalLadder = ladderOf(facts);
  model.thermal = thermalOf(facts);
  model.lid = lidOf(facts);
  model.helper = helperOf(facts);
  if (facts.power.isLowPowerMode) model.lowPower = "Low Power Mode is on";
  model.settingKeys = {"onlyOnAC", "batteryFloorPercent", "preventDisplaySleep", "deepLidProtectionEnabled",
                       "releaseDelaySeconds"};
  return model;
}

PowerFacts powerFacts(AppCoordinator& coordinator) {
  return {.now = coordinator.clock().now(),
          .decision = coordinator.currentDecision().get(),
          .hold = coordinator.hold().get(),
          .power = coordinator.batteryMonitor().currentSnapshot(),
          .powerSource = coordinator.batteryMonitor().sourceName(),
          .thermalState = coordinator.thermalMonitor().currentThermalState(),
          .thermalSource = coordinator.thermalMonitor().sourceName(),
          .lidClosed = coordinator.lidMonitor().reading(),
          .lidSource = coordinator.lidMonitor().sourceName(),
          .helper = coordinator.helperStatus().get(),
          .settings = coordinator.settings().policyConfig()};
}

}  // namespace kestrel
