#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/hardware/FileTree.h"

#include "KestrelPlatform/Linux/LinuxThermalSource.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"

namespace kestrel {
namespace {

class ThermalSourceTest : public testing::Test {
 protected:
  void zone(const std::string& name, const std::string& temperature,
            const std::vector<std::pair<std::string, std::string>>& trips) const {
    files_.write(name, {{"type", "x86_pkg_temp"}, {"mode", "enabled"}, {"temp", temperature}});
    for (std::size_t i = 0; i < trips.size(); ++i) {
      const std::string trip = name + "/trip_point_" + std::to_string(i);
      files_.write({{trip + "_type", trips[i].first}, {trip + "_temp", trips[i].second}});
    }
  }
  void start() {
    source_ = makeLinuxThermalSource(executor_, log_, files_.root());
    observation_ = source_->observe([this] { levels_.push_back(source_->level()); });
  }
  void heat(const std::string& milliDegrees, double seconds) {
    files_.write({{"thermal_zone1/temp", milliDegrees}});
    executor_.advance(seconds);
  }

  test::FileTree files_;
  ManualExecutor executor_;
  std::shared_ptr<MemoryLogSink> log_ = std::make_shared<MemoryLogSink>();
  std::unique_ptr<ThermalSource> source_;
  RegistrationPtr observation_;
  std::vector<int> levels_;
};

TEST_F(ThermalSourceTest, WalksUpAndDownWithTheHottestZone) {
  zone("thermal_zone0", "27800", {{"critical", "119000"}});
  zone("thermal_zone1", "60000", {{"passive", "95000"}, {"critical", "105000"}});
  zone("cooling_device0", "100000", {{"critical", "90000"}});
  start();
  heat("86000", 5.1);
  EXPECT_EQ(levels_, (std::vector{1}));
  heat("96000", 9);
  EXPECT_EQ(source_->level(), 1);
  heat("96000", 3);
  heat("101000", 1);
  heat("96000", 30);
  EXPECT_EQ(source_->level(), 3);
  for (const char* milliDegrees : {"94000", "88000", "79000"}) heat(milliDegrees, 1);
  EXPECT_EQ(levels_, (std::vector{1, 2, 3, 2, 1, 0}));
  EXPECT_EQ(source_->sourceName(), "/sys/class/thermal");
}

TEST_F(ThermalSourceTest, KnowsNothingWhereNoZoneTells) {
  zone("thermal_zone0", "100000", {});
  zone("thermal_zone1", "100000", {{"critical", "0"}, {"passive", "0"}});
  zone("thermal_zone2", "100000", {{"critical", "90000"}});
  files_.write({{"thermal_zone2/mode", "disabled"}});
  zone("thermal_zone3", "-274000", {{"critical", "90000"}});
  zone("thermal_zone4", "151000", {{"critical", "90000"}});
  zone("thermal_zone5", "warm", {{"critical", "90000"}});
  zone("thermal_zone7", "89000", {{"critical", "very"}, {"critical", "-1"}});
  start();
  executor_.advance(120);
  EXPECT_EQ(source_->level(), 0);
  EXPECT_EQ(source_->sourceName(), std::nullopt);
  EXPECT_EQ(log_->count("taken as nominal"), 1u);
}

TEST_F(ThermalSourceTest, CopesWithZonesThatComeFailAndGo) {
  start();
  zone("thermal_zone1", "87000", {{"critical", "105000"}});
  executor_.advance(59);
  EXPECT_EQ(source_->sourceName(), std::nullopt);
  executor_.advance(2);
  EXPECT_EQ(levels_, (std::vector{1}));
  heat("", 1);
  EXPECT_EQ(source_->sourceName(), std::nullopt);
  heat("87000", 5);
  files_.remove("thermal_zone1");
  executor_.advance(61);
  EXPECT_EQ(levels_, (std::vector{1, 0, 1, 0}));
  observation_.reset();
  source_.reset();
  EXPECT_EQ(executor_.timerCount(), 0u);
}

}  // namespace
}  // namespace kestrel
