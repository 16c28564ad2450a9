#include "KestrelPlatform/Linux/UPowerReading.h"

#include "KestrelPlatform/Linux/PowerPlausibility.h"

namespace kestrel {
namespace {

enum class State : std::int64_t { unknown = 0, charging = 1 };

}  // namespace

/// The presence comes first: a battery that was removed reads 0 percent.
std::optional<PowerSourceDescription> powerFromUPower(const BusValues& daemon, const BusValues& display) {
  const auto onBattery = valueOf<bool>(daemon, "OnBattery");
  const auto isPresent = valueOf<bool>(display, "IsPresent");
  if (!onBattery || !isPresent) return std::nullopt;
  PowerSourceDescription description;
  description.powerSourceState = *isPresent && *onBattery ? kBatteryPower : kMainsPower;
  if (!*isPresent) return description;
  const auto state = valueOf<std::int64_t>(display, "State");
  if (state) description.isCharging = *state == static_cast<std::int64_t>(State::charging);
  if (const auto percentage = valueOf<double>(display, "Percentage"))
    description.currentCapacity = plausiblePercent(*percentage);
  // A battery that is just being found reads 0 as well.
  if (description.currentCapacity == 0 && state.value_or(0) == static_cast<std::int64_t>(State::unknown))
    description.currentCapacity.reset();
  if (description.currentCapacity) description.maxCapacity = 100;
  if (const auto seconds = valueOf<std::int64_t>(display, "TimeToEmpty"))
    description.timeToEmpty = plausibleMinutes(static_cast<double>(*seconds));
  return description;
}

std::optional<bool> lidFromUPower(const BusValues& daemon) {
  if (!valueOf<bool>(daemon, "LidIsPresent").value_or(false)) return std::nullopt;
  return valueOf<bool>(daemon, "LidIsClosed");
}

}  // namespace kestrel
