#include "KestrelPlatform/Linux/SysfsPowerSupplies.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "KestrelPlatform/Linux/PowerPlausibility.h"
#include "KestrelPlatform/Linux/SysfsReader.h"

namespace kestrel {
namespace {

/// What a battery holds: micro-watt hours, or micro-ampere hours where the kernel counts charge.
struct Store {
  double now = 0;
  double full = 0;
  /// Drawn from it, in micro-watts or micro-amperes.
  double drain = 0;
};

struct Battery {
  std::string status;
  std::optional<std::int64_t> percent;
  std::optional<Store> energy;
  std::optional<Store> charge;
};

struct Supplies {
  std::vector<Battery> batteries;
  bool hasMains = false;
  bool isMainsOnline = false;

  [[nodiscard]] bool anyBatteryIs(std::string_view status) const {
    return std::ranges::any_of(batteries, [&](const Battery& each) { return each.status == status; });
  }
};

std::optional<Store> readStore(const std::filesystem::path& supply, const std::string& quantity,
                               const char* drainFile) {
  const auto now = readIntegerFile(supply / (quantity + "_now"));
  const auto full = readIntegerFile(supply / (quantity + "_full"));
  if (!now || !full || *now < 0 || *full < 1) return std::nullopt;
  // Some drivers count what leaves the battery as negative.
  const double drain = std::fabs(static_cast<double>(readIntegerFile(supply / drainFile).value_or(0)));
  return Store{static_cast<double>(*now), static_cast<double>(*full), drain};
}

std::optional<Battery> readBattery(const std::filesystem::path& supply) {
  if (readIntegerFile(supply / "present") == 0) return std::nullopt;
  Battery battery;
  battery.status = readSmallFile(supply / "status").value_or("");
  battery.energy = readStore(supply, "energy", "power_now");
  battery.charge = readStore(supply, "charge", "current_now");
  if (const auto capacity = readIntegerFile(supply / "capacity"))
    battery.percent = plausiblePercent(static_cast<double>(*capacity));
  const auto& store = battery.energy ? battery.energy : battery.charge;
  if (!battery.percent && store) battery.percent = plausiblePercent(100 * store->now / store->full);
  // A battery that is just being found, or lost, reads 0 before its status is known.
  if (battery.percent == 0 && (battery.status.empty() || battery.status == "Unknown"))
    battery.percent.reset();
  return battery;
}

Supplies readAll(const std::filesystem::path& root) {
  Supplies supplies;
  for (const auto& supply : pathsIn(root)) {
    if (readSmallFile(supply / "scope") == "Device") continue;
    const auto type = readSmallFile(supply / "type");
    if (type == "Battery") {
      if (auto battery = readBattery(supply)) supplies.batteries.push_back(std::move(*battery));
    } else if (type == "Mains") {
      supplies.hasMains = true;
      supplies.isMainsOnline |= readIntegerFile(supply / "online") == 1;
    }
  }
  return supplies;
}

/// The sum of all batteries, when all count the same quantity.
std::optional<Store> sum(const std::vector<Battery>& batteries, std::optional<Store> Battery::*quantity) {
  Store total;
  for (const Battery& each : batteries) {
    const std::optional<Store>& store = each.*quantity;
    if (!store) return std::nullopt;
    total.now += store->now;
    total.full += store->full;
    total.drain += store->drain;
  }
  return total;
}

std::optional<Store> sum(const std::vector<Battery>& batteries) {
  const auto energy = sum(batteries, &Battery::energy);
  return energy ? energy : sum(batteries, &Battery::charge);
}

/// One battery's own figure; of several that of their sum, or their mean where they cannot be added.
std::optional<std::int64_t> percentOf(const std::vector<Battery>& batteries) {
  if (batteries.size() == 1) return batteries.front().percent;
  if (const auto total = sum(batteries)) return plausiblePercent(100 * total->now / total->full);
  double percents = 0;
  int counted = 0;
  for (const Battery& each : batteries) {
    percents += static_cast<double>(each.percent.value_or(0));
    counted += each.percent ? 1 : 0;
  }
  return counted == 0 ? std::nullopt : plausiblePercent(percents / counted);
}

/// An adapter that is connected decides. Where none is shown, as with a charger on USB, the batteries know.
bool isOnMains(const Supplies& supplies) {
  if (supplies.isMainsOnline || supplies.batteries.empty()) return true;
  if (supplies.anyBatteryIs("Discharging")) return false;
  const bool isFed = supplies.anyBatteryIs("Charging") || supplies.anyBatteryIs("Full") ||
                     supplies.anyBatteryIs("Not charging");
  return isFed || !supplies.hasMains;
}

std::optional<std::int64_t> minutesLeft(const Supplies& supplies) {
  const auto total = sum(supplies.batteries);
  if (!total || total->drain <= 0 || !supplies.anyBatteryIs("Discharging")) return std::nullopt;
  return plausibleMinutes(total->now / total->drain * 3600);
}

}  // namespace

std::optional<PowerSource::List> readPowerSupplies(const std::filesystem::path& root) {
  const Supplies supplies = readAll(root);
  if (supplies.batteries.empty() && !supplies.hasMains) return std::nullopt;
  PowerSourceDescription description;
  description.powerSourceState = isOnMains(supplies) ? kMainsPower : kBatteryPower;
  if (!supplies.batteries.empty()) {
    description.isCharging = supplies.anyBatteryIs("Charging");
    description.timeToEmpty = minutesLeft(supplies);
    description.currentCapacity = percentOf(supplies.batteries);
    if (description.currentCapacity) description.maxCapacity = 100;
  }
  return PowerSource::List{description};
}

}  // namespace kestrel
