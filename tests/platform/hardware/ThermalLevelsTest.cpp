#include <gtest/gtest.h>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "KestrelPlatform/Linux/ThermalLevels.h"

namespace kestrel {
namespace {

TEST(ThermalLevels, ComeFromTheTripPointsThatMakeSense) {
  constexpr double kNever = std::numeric_limits<double>::infinity();
  const struct {
    const char* what;
    std::vector<ThermalTrip> trips;
    double fair, serious, critical;
  } cases[] = {
      {"passive and critical", {{"passive", 95}, {"critical", 105}}, 85, 95, 100},
      {"the lowest passive", {{"passive", 90}, {"passive", 80}, {"critical", 100}}, 70, 80, 95},
      {"hot before critical", {{"critical", 110}, {"hot", 100}, {"passive", 85}}, 75, 85, 100},
      {"critical alone", {{"critical", 105}}, 85, 95, 100},
      {"hot far below critical", {{"hot", 80}, {"critical", 110}}, 65, 75, 80},
      {"passive alone", {{"passive", 85}}, 75, 85, kNever},
      {"passive as good as critical", {{"passive", 103}, {"critical", 105}}, 85, 95, 100},
      {"not programmed", {{"passive", 0}, {"critical", -274}, {"active", 40}, {"hot", 90}}, 75, 85, 90},
      {"a placeholder", {{"critical", 255}, {"passive", 85}}, 75, 85, kNever},
  };
  for (const auto& each : cases) {
    const auto entries = thermalEntries(each.trips);
    ASSERT_TRUE(entries) << each.what;
    EXPECT_EQ(std::tuple(entries->fair, entries->serious, entries->critical),
              std::tuple(each.fair, each.serious, each.critical))
        << each.what;
  }
  EXPECT_FALSE(thermalEntries({{"active", 60}, {"critical", 0}, {"passive", 200}, {"\xFF", 90}}).has_value());
}

TEST(ThermalLevels, AreLeftFiveDegreesBelowTheirEntry) {
  const auto entries = thermalEntries({{"passive", 95}, {"critical", 105}}).value();
  const std::vector<std::pair<double, int>> ramp{{80, 0},   {86, 1},  {94, 1},   {84, 1}, {79, 0},  {96, 2},
                                                 {89, 1},   {101, 3}, {96, 3},   {94, 2}, {88, 1},  {79, 0},
                                                 {84.9, 0}, {85, 1},  {80.1, 1}, {80, 0}, {95, 2},  {90.1, 2},
                                                 {90, 1},   {100, 3}, {95.1, 3}, {95, 2}, {100, 3}, {20, 0}};
  int level = 0;
  for (const auto& [celsius, expected] : ramp) {
    level = thermalLevel(entries, celsius, level);
    EXPECT_EQ(level, expected) << celsius << " degrees";
  }
}

TEST(ThermalRise, AsksForTenSecondsBeforeTheUpperLevels) {
  const struct {
    int level;
    double elapsed;
    int expected;
  } steps[] = {
      {0, 0, 0}, {1, 5, 1},   {3, 5, 1}, {0, 1, 0},              // A spike.
      {2, 5, 1}, {2, 5, 1},   {3, 4, 1}, {2, 1, 2},              // Serious after 10 s in all.
      {3, 1, 3}, {2, 1, 2},   {3, 1, 3}, {1, 1, 1},              // Hot all the time: critical counts at once.
      {2, 1, 1}, {2, 9.5, 1}, {0, 1, 0}, {3, 5, 1}, {3, 10, 3},  // And anew after it was cooler.
  };
  ThermalRise rise;
  for (const auto& each : steps) EXPECT_EQ(rise.update(each.level, each.elapsed), each.expected);
}

}  // namespace
}  // namespace kestrel
