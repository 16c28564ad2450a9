#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "tests/platform/hardware/FileTree.h"

#include "KestrelPlatform/Linux/LinuxLidSource.h"
#include "KestrelPlatform/Linux/LinuxPowerSource.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"

namespace kestrel {
namespace {

/// A machine without any service: no bus answers.
class HardwareFilesTest : public testing::Test {
 protected:
  HardwareFilesTest() {
    ::setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + (files_.root() / "bus").string()).c_str(), 1);
    services_ = std::make_shared<HardwareServices>(executor_, log_);
  }

  test::FileTree files_;
  ManualExecutor executor_;
  std::shared_ptr<MemoryLogSink> log_ = std::make_shared<MemoryLogSink>();
  std::shared_ptr<HardwareServices> services_;
};

TEST_F(HardwareFilesTest, ABatteryIsFoundChangesAndGoes) {
  auto source = makeLinuxPowerSource(executor_, log_, services_, files_.root());
  int told = 0;
  auto observation = source->observe([&] { ++told; });
  const auto capacity = [&] {
    const auto list = source->read();
    return list ? list->front()->currentCapacity : std::nullopt;
  };
  EXPECT_FALSE(source->read());
  files_.write("BAT0", {{"type", "Battery"}, {"status", "Discharging"}, {"capacity", "63"}});
  executor_.advance(29.9);
  EXPECT_EQ(capacity(), std::nullopt);
  executor_.advance(0.2);
  EXPECT_EQ(capacity(), 63);
  EXPECT_EQ(source->sourceName(), "/sys/class/power_supply");
  files_.write({{"BAT0/capacity", "62"}});
  executor_.advance(120);
  EXPECT_EQ(capacity(), 62);
  EXPECT_EQ(told, 2);
  files_.remove("BAT0");
  executor_.advance(32);
  EXPECT_FALSE(source->read());
  EXPECT_EQ(told, 3);
  EXPECT_EQ(log_->count("The power source cannot be read here; taken as mains power"), 2u);
  observation.reset();
  source.reset();
  services_.reset();
  EXPECT_EQ(executor_.timerCount() + executor_.watchCount(), 0u);
}

TEST_F(HardwareFilesTest, ALidsButtonIsUnderstoodOrLeft) {
  const auto lid = makeLinuxLidSource(executor_, log_, services_, {files_.root(), files_.root() / "input"});
  const std::pair<const char*, std::optional<bool>> cases[] = {{"state:      open", false},
                                                               {"state:      closed", true},
                                                               {"state:      unsupported", std::nullopt},
                                                               {"closed", std::nullopt},
                                                               {"", std::nullopt}};
  for (const auto& [state, expected] : cases) {
    files_.write({{"LID0/state", state}});
    executor_.advance(10);
    EXPECT_EQ(lid->isClosed(), expected) << state;
  }
}

}  // namespace
}  // namespace kestrel
