#include "KestrelCore/Presentation/PowerStripModel.h"

#include <fmt/format.h>

#include "KestrelCore/Presentation/DurationText.h"

namespace kestrel {
namespace {

using Supply = PowerStripModel::Supply;

Supply supplyOf(const PowerSourceSnapshot& power) {
  if (power.isCharging) return Supply::charging;
  return power.isOnAC ? Supply::mains : Supply::battery;
}

PowerFigure powerFigure(const PowerSourceSnapshot& power, bool isTooLow) {
  if (!power.batteryPercent) return {power.isOnAC ? "No battery" : "On battery"};
  const auto with = [&](const char* words) { return fmt::format("{} % {}", *power.batteryPercent, words); };
  switch (supplyOf(power)) {
    case Supply::charging:
      return {with("charging"), Tone::good};
    case Supply::mains:
      return {with("plugged in")};
    case Supply::battery:
    case Supply::unknown:
      break;
  }
  PowerFigure figure{with("on battery"), isTooLow ? Tone::bad : Tone::normal};
  if (power.timeRemainingMinutes) {
    figure.details = durationText(static_cast<double>(*power.timeRemainingMinutes) * 60) + " left";
  }
  return figure;
}

PowerFigure heatFigure(SystemThermalState state) {
  const auto tone = state == SystemThermalState::critical  ? Tone::bad
                    : state == SystemThermalState::serious ? Tone::warn
                                                           : Tone::normal;
  return {std::string(rawValue(state)), tone, fmt::format("Heat: {}", rawValue(state))};
}

}  // namespace

PowerStripModel powerStripModel(const PowerStripFacts& facts) {
  PowerStripModel model;
  model.power = {"Power unknown", Tone::muted, "No power service answered"};
  model.heat = {"heat unknown", Tone::muted, "Nothing tells how hot the machine is"};
  model.lowPower = {"Low Power off", Tone::muted, ""};
  if (facts.power) {
    model.supply = supplyOf(*facts.power);
    model.power = powerFigure(*facts.power, facts.isBatteryTooLow);
    if (facts.power->isLowPowerMode) model.lowPower = {"Low Power on", Tone::warn, ""};
  }
  if (facts.heat) model.heat = heatFigure(*facts.heat);
  return model;
}

}  // namespace kestrel
