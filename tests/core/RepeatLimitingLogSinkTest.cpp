#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "KestrelCore/Support/Logger.h"
#include "KestrelCore/Support/RepeatLimitingLogSink.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"

namespace kestrel {
namespace {

using testing::ElementsAre;

class RepeatLimitingLogSinkTest : public testing::Test {
 protected:
  [[nodiscard]] std::vector<std::string> written() const { return target_->lines("test"); }

  const std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>();
  const std::shared_ptr<MemoryLogSink> target_ = std::make_shared<MemoryLogSink>();
  std::shared_ptr<RepeatLimitingLogSink> sink_ = std::make_shared<RepeatLimitingLogSink>(target_, clock_);
};

TEST_F(RepeatLimitingLogSinkTest, LetsALineThroughOnceAMinuteAndCountsTheRest) {
  const Logger logger(sink_, "test");
  for (int second = 0; second < 60; ++second) {
    logger.error("failed");
    if (second == 30) logger.error("another");
    clock_->advance(second == 59 ? 0.999 : 1);
  }
  EXPECT_THAT(written(), ElementsAre("failed", "another"));
  clock_->advance(0.001);
  logger.error("failed");
  EXPECT_THAT(written(), ElementsAre("failed", "another", "failed (repeated 59 times)", "failed"));
  clock_->set(clock_->now() - 86'400);
  logger.error("failed");
  EXPECT_EQ(written().size(), 5U) << "a clock that was set back silenced it";
}

TEST_F(RepeatLimitingLogSinkTest, SaysWhatItHeldBackAtItsEnd) {
  Logger(sink_, "test").repeatingError("s", "stale for {} s", 900);
  Logger(sink_, "test").repeatingError("s", "stale for {} s", 901);
  Logger(sink_, "test").repeatingError("t", "stale for {} s", 900);
  sink_.reset();
  EXPECT_THAT(written(),
              ElementsAre("stale for 900 s", "stale for 900 s", "stale for 901 s (repeated 1 times)"));
}

}  // namespace
}  // namespace kestrel
