#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/platform/hardware/FileTree.h"

#include "KestrelPlatform/Linux/SysfsPowerSupplies.h"

namespace kestrel {
namespace {

using Files = test::FileTree::Files;

/// "Battery Power, 63 %, 120 min, charging", or "nothing".
std::string read(const test::FileTree& tree) {
  const auto list = readPowerSupplies(tree.root());
  if (!list) return "nothing";
  const PowerSourceDescription& source = list->front().value();
  std::string text = source.powerSourceState.value();
  if (source.currentCapacity) text += ", " + std::to_string(*source.currentCapacity) + " %";
  if (source.timeToEmpty) text += ", " + std::to_string(*source.timeToEmpty) + " min";
  return text + (source.isCharging.value_or(false) ? ", charging" : "");
}

Files battery(const std::string& status, const std::string& capacity, Files more = {}) {
  more.insert({{"type", "Battery"}, {"present", "1"}, {"status", status}, {"capacity", capacity}});
  return more;
}
Files mains(const std::string& online) {
  return {{"type", "Mains"}, {"online", online}};
}
Files energy(const std::string& now, const std::string& full, const std::string& power) {
  return {{"energy_now", now}, {"energy_full", full}, {"power_now", power}};
}

TEST(SysfsPowerSupplies, ReadsWhatMachinesShow) {
  const struct {
    const char* what;
    std::map<std::string, Files> supplies;
    std::string expected;
  } cases[] = {
      {"a virtual machine", {}, "nothing"},
      {"a laptop on battery",
       {{"AC", mains("0")},
        {"BAT0", battery("Discharging", "63", energy("24000000", "38000000", "12000000"))}},
       "Battery Power, 63 %, 120 min"},
      {"the same by charge, with a negative current",
       {{"BAT0",
         battery("Discharging", "50",
                 {{"charge_now", "2000000"}, {"charge_full", "4000000"}, {"current_now", "-1000000"}})}},
       "Battery Power, 50 %, 120 min"},
      {"a laptop on mains",
       {{"AC", mains("1")}, {"BAT0", battery("Charging", "63", energy("1", "2", "12000000"))}},
       "AC Power, 63 %, charging"},
      {"a charger on USB beside an unused adapter",
       {{"AC", mains("0")}, {"BAT0", battery("Full", "100")}},
       "AC Power, 100 %"},
      {"a charger that is too weak",
       {{"AC", mains("1")}, {"BAT0", battery("Discharging", "20")}},
       "AC Power, 20 %"},
      {"no capacity", {{"BAT0", battery("Discharging", "", energy("1", "3", "0"))}}, "Battery Power, 33 %"},
      {"only a mouse", {{"hid", battery("Discharging", "5", {{"scope", "Device"}})}}, "nothing"},
      {"two batteries, one at work",
       {{"BAT0", battery("Discharging", "20", energy("10000000", "50000000", "10000000"))},
        {"BAT1", battery("Not charging", "100", energy("30000000", "30000000", "0"))}},
       "Battery Power, 50 %, 240 min"},
  };
  for (const auto& each : cases) {
    const test::FileTree tree;
    for (const auto& [name, files] : each.supplies) tree.write(name, files);
    EXPECT_EQ(read(tree), each.expected) << each.what;
  }
}

TEST(SysfsPowerSupplies, TakesNonsenseAsUnknown) {
  const struct {
    const char* what;
    Files battery;
    std::string expected;
  } cases[] = {
      {"removed", battery("Discharging", "0", {{"present", "0"}}), "AC Power"},
      {"really empty", battery("Discharging", "0"), "Battery Power, 0 %"},
      {"being found", battery("Unknown", "0"), "Battery Power"},
      {"unknown, beside an adapter that is not connected", battery("Unknown", "40"), "Battery Power, 40 %"},
      {"over full", battery("Full", "104"), "AC Power, 100 %"},
      {"minus one", battery("Discharging", "-1"), "Battery Power"},
      {"beyond 64 bits", battery("Discharging", "99999999999999999999"), "Battery Power"},
      {"words", battery("Discharging", "50 percent\nor so"), "Battery Power"},
      {"long", battery("Discharging", std::string(100'000, '5')), "Battery Power"},
      {"huge energy", battery("Discharging", "", energy("9223372036854775807", "1", "1")), "Battery Power"},
      {"nothing but a type", {{"type", "Battery"}}, "Battery Power"},
  };
  for (const auto& each : cases) {
    const test::FileTree tree;
    tree.write("AC", mains("0"));
    tree.write("BAT0", each.battery);
    EXPECT_EQ(read(tree), each.expected) << each.what;
  }
}

}  // namespace
}  // namespace kestrel
