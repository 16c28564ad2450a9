#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "KestrelPlatform/Linux/UPowerReading.h"

namespace kestrel {
namespace {

BusValues daemon(bool onBattery) {
  return {{"OnBattery", onBattery}};
}

/// A battery at 80 %, with other values for some of its properties.
BusValues battery(const BusValues& changes = {}) {
  BusValues values{{"IsPresent", true},
                   {"State", std::int64_t{2}},
                   {"Percentage", 80.0},
                   {"TimeToEmpty", std::int64_t{14'459}}};
  for (const auto& [name, value] : changes) values.insert_or_assign(name, value);
  return values;
}

std::string describe(const BusValues& upower, const BusValues& display) {
  const auto source = powerFromUPower(upower, display);
  if (!source) return "nothing";
  std::string text = source->powerSourceState.value();
  if (source->currentCapacity) text += ", " + std::to_string(*source->currentCapacity) + " %";
  if (source->timeToEmpty) text += ", " + std::to_string(*source->timeToEmpty) + " min";
  return text + (source->isCharging.value_or(false) ? ", charging" : "");
}

TEST(UPowerReading, TranslatesWhatTheDaemonSays) {
  const auto integer = [](std::int64_t value) { return BusValue(value); };
  const struct {
    const char* what;
    BusValues upower;
    BusValues display;
    std::string expected;
  } cases[] = {
      {"on battery", daemon(true), battery(), "Battery Power, 80 %, 240 min"},
      {"charging", daemon(false), battery({{"State", integer(1)}, {"TimeToEmpty", integer(0)}}),
       "AC Power, 80 %, charging"},
      {"truncated", daemon(true), battery({{"Percentage", 15.99}, {"TimeToEmpty", integer(119)}}),
       "Battery Power, 15 %, 1 min"},
      {"removed", daemon(false), battery({{"IsPresent", false}, {"Percentage", 0.0}, {"State", integer(0)}}),
       "AC Power"},
      {"removed, and not noticed everywhere", daemon(true), battery({{"IsPresent", false}}), "AC Power"},
      {"really empty", daemon(true), battery({{"Percentage", 0.0}, {"TimeToEmpty", integer(0)}}),
       "Battery Power, 0 %"},
      {"being found", daemon(true),
       battery({{"Percentage", 0.0}, {"State", integer(0)}, {"TimeToEmpty", integer(0)}}), "Battery Power"},
      {"not a number", daemon(true),
       battery({{"Percentage", std::numeric_limits<double>::quiet_NaN()}, {"TimeToEmpty", integer(-60)}}),
       "Battery Power"},
      {"huge", daemon(true),
       battery({{"Percentage", 1e300}, {"TimeToEmpty", integer(std::numeric_limits<std::int64_t>::max())}}),
       "Battery Power"},
      {"of wrong types", daemon(true),
       battery({{"Percentage", integer(50)}, {"State", std::string("2")}, {"TimeToEmpty", 3600.0}}),
       "Battery Power"},
      {"presence of a wrong type", daemon(true), battery({{"IsPresent", integer(1)}}), "nothing"},
      {"no word on mains", {}, battery(), "nothing"},
  };
  for (const auto& each : cases) EXPECT_EQ(describe(each.upower, each.display), each.expected) << each.what;
}

TEST(UPowerReading, KnowsALidOnlyWhereThereIsOne) {
  EXPECT_EQ(lidFromUPower({{"LidIsPresent", true}, {"LidIsClosed", true}}), true);
  EXPECT_EQ(lidFromUPower({{"LidIsPresent", false}, {"LidIsClosed", false}}), std::nullopt);
  EXPECT_EQ(lidFromUPower({{"LidIsPresent", true}, {"LidIsClosed", std::string("yes")}}), std::nullopt);
}

}  // namespace
}  // namespace kestrel
