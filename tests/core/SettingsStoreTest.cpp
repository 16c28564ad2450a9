#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

#include "KestrelCore/Settings/SettingsStore.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/MemoryUserDefaults.h"

namespace kestrel {
namespace {

using Value = MemoryUserDefaults::Value;

/// A value other than the default for a setting of each kind.
struct Setting {
  const char* key;
  std::function<bool(SettingsStore&)> change;
  Value changed;
  std::optional<Value> restored;
};
using S = SettingsStore;
const std::vector<Setting> kSettings{
    {"masterEnabled", [](S& s) { return s.setMasterEnabled(false); }, false, true},
    {"releaseDelaySeconds", [](S& s) { return s.setReleaseDelaySeconds(-5); }, -5.0, 30.0},
    {"batteryFloorPercent", [](S& s) { return s.setBatteryFloorPercent(80); }, std::int64_t{50},
     std::int64_t{15}},
    {"notificationsEnabled", [](S& s) { return s.setNotificationsEnabled(false); }, false, true},
    {"pauseUntil", [](S& s) { return s.pause(1800); }, ManualClock::kDefaultStart + 1800, std::nullopt},
};

class SettingsStoreTest : public testing::Test {
 protected:
  MemoryUserDefaults defaults_;
  SettingsStore store_{defaults_, std::make_shared<ManualClock>()};
};

TEST_F(SettingsStoreTest, WritesFirstAndThenAnnouncesAndResetsAllButTheLogin) {
  for (const auto& setting : kSettings) {
    std::optional<Value> seen;
    const auto observation = store_.observe([&] { seen = defaults_.valueForKey(setting.key); });
    EXPECT_TRUE(setting.change(store_));
    EXPECT_EQ(seen, setting.changed) << setting.key;
  }
  ASSERT_TRUE(store_.setLaunchAtLogin(true));
  EXPECT_TRUE(store_.resetToDefaults());
  for (const auto& setting : kSettings) EXPECT_EQ(defaults_.valueForKey(setting.key), setting.restored);
  EXPECT_TRUE(store_.launchAtLogin());
}

TEST_F(SettingsStoreTest, PolicyGetsValuesWithinTheirRanges) {
  EXPECT_EQ(store_.policyConfig(), PolicyConfiguration{});
  const struct {
    std::int64_t floor;
    double delay;
    std::int64_t expectedFloor;
    double expectedDebounce;
  } rows[] = {{80, -5, 50, 0}, {2, NAN, 5, 0}, {INT64_MIN, 1e300, 5, 1e9}, {33, INFINITY, 33, 1e9}};
  for (const auto& row : rows) {
    defaults_.changeFromOutside("batteryFloorPercent", row.floor);
    defaults_.changeFromOutside("releaseDelaySeconds", row.delay);
    EXPECT_EQ(store_.policyConfig().batteryFloorPercent, row.expectedFloor);
    EXPECT_EQ(store_.policyConfig().releaseDebounceSeconds, row.expectedDebounce);
  }
}

}  // namespace
}  // namespace kestrel
