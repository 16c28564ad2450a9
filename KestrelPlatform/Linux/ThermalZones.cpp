#include "KestrelPlatform/Linux/ThermalZones.h"

#include <algorithm>
#include <string>

#include "KestrelPlatform/Linux/SysfsReader.h"

namespace kestrel {
namespace {

/// More than any zone has.
constexpr int kMaximumTrips = 64;

std::optional<double> readCelsius(const std::filesystem::path& file) {
  const auto milli = readIntegerFile(file);
  if (!milli) return std::nullopt;
  return static_cast<double>(*milli) / 1000;
}

std::vector<ThermalTrip> readTrips(const std::filesystem::path& zone) {
  std::vector<ThermalTrip> trips;
  for (int i = 0; i < kMaximumTrips; ++i) {
    const std::string name = "trip_point_" + std::to_string(i);
    auto type = readSmallFile(zone / (name + "_type"));
    if (!type) break;
    if (const auto celsius = readCelsius(zone / (name + "_temp")))
      trips.push_back({std::move(*type), *celsius});
  }
  return trips;
}

bool isZone(const std::filesystem::path& path) {
  return path.filename().native().starts_with("thermal_zone");
}

}  // namespace

void ThermalZones::scan() {
  std::vector<Zone> zones;
  for (const auto& folder : pathsIn(root_)) {
    if (!isZone(folder) || readSmallFile(folder / "mode") == "disabled") continue;
    if (const auto entries = thermalEntries(readTrips(folder)))
      zones.push_back({folder, *entries, lastLevelOf(folder)});
  }
  zones_ = std::move(zones);
}

int ThermalZones::lastLevelOf(const std::filesystem::path& folder) const {
  const auto known = std::ranges::find(zones_, folder, &Zone::folder);
  return known == zones_.end() ? 0 : known->level;
}

/// A sensor whose device sleeps cannot be read: there is nothing hot then.
std::optional<int> ThermalZones::readLevel() {
  std::optional<int> hottest;
  for (Zone& zone : zones_) {
    const auto celsius = readCelsius(zone.folder / "temp");
    const bool isKnown = celsius && isPlausibleTemperature(*celsius);
    zone.level = isKnown ? thermalLevel(zone.entries, *celsius, zone.level) : 0;
    if (isKnown) hottest = std::max(hottest.value_or(0), zone.level);
  }
  return hottest;
}

}  // namespace kestrel
