#include <gtest/gtest.h>
#include <memory>

#include "KestrelCore/Power/BatteryMonitor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/SimulatedPowerSource.h"

namespace kestrel {
namespace {

TEST(BatteryMonitor, ReadsTheFirstDescribedSource) {
  const auto sink = std::make_shared<MemoryLogSink>();
  SimulatedPowerSource power;
  SimulatedLowPowerMode lowPower;
  const struct {
    std::optional<PowerSource::List> list;
    PowerSourceSnapshot expected;
  } rows[] = {
      {std::nullopt, {}},
      {{{std::nullopt, PowerSourceDescription{"Battery Power", false, 57, 100, 90}}},
       {57, false, false, true, 90}},
      {{{PowerSourceDescription{"AC Power", true, 999, 1000, 0}, PowerSourceDescription{}}},
       {99, true, true, true, {}}},
      {{{PowerSourceDescription{"Battery Power", {}, 5, 0, -1}}}, {{}, false, false, true, {}}},
      {{{PowerSourceDescription{"AC Power", {}, -3, 5000, {}}}}, {0, false, true, true, {}}},
      {{{PowerSourceDescription{"AC Power", {}, INT64_MAX, INT64_MAX, {}}}}, {100, false, true, true, {}}},
  };
  lowPower.set(true);
  for (const auto& row : rows) {
    power.set(row.list);
    EXPECT_EQ(BatteryMonitor(power, lowPower, sink).currentSnapshot(), row.expected) << &row - rows;
  }
  // Whole percentages are exact.
  for (std::int64_t percent = 0; percent <= 100; ++percent) {
    power.set(PowerSource::List{PowerSourceDescription{"AC Power", {}, percent, 100, {}}});
    EXPECT_EQ(BatteryMonitor(power, lowPower, sink).currentSnapshot().batteryPercent, percent);
  }
}

}  // namespace
}  // namespace kestrel
