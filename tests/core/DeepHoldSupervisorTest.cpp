#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "KestrelCore/Power/DeepHoldSupervisor.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"

namespace kestrel {
namespace {

/// Writes down what is asked; the answers come when the test gives them.
struct ScriptedController final : DeepSleepControlling {
  void isDeepHoldActive(std::function<void(bool)>) override {}
  void status(std::function<void(const DeepSleepStatus&)> done) override {
    asked += "status ";
    statusAnswers.push_back(std::move(done));
  }
  void acquire(double, std::function<void(bool)> done) override {
    asked += "acquire ";
    acquireAnswers.push_back(std::move(done));
  }
  void release(std::function<void()> done) override {
    asked += "release ";
    done();
  }
  std::string asked;
  std::vector<std::function<void(bool)>> acquireAnswers;
  std::vector<std::function<void(const DeepSleepStatus&)>> statusAnswers;
};

class DeepHoldSupervisorTest : public testing::Test {
 protected:
  /// What was asked since the last question.
  std::string asked() {
    main_.runPending();
    return std::exchange(controller_->asked, {});
  }
  void granted(bool answer) {
    const auto answers = std::exchange(controller_->acquireAnswers, {});
    for (const auto& give : answers) give(answer);
    main_.runPending();
  }
  void tells(const DeepSleepStatus& status) {
    const auto answers = std::exchange(controller_->statusAnswers, {});
    for (const auto& give : answers) give(status);
    main_.runPending();
  }
  std::string evidence() const {
    const auto list = supervisor_.evidence();
    return list.empty() ? "" : std::string(rawValue(list[0].state));
  }

  ManualExecutor main_;
  ScriptedController* controller_ = new ScriptedController;
  DeepHoldSupervisor supervisor_{std::unique_ptr<DeepSleepControlling>(controller_), main_};
};

const DeepSleepStatus kHolds{true, true, "A", Date::sinceReferenceDate(60), false, true};
const DeepSleepStatus kIdle{true, false, {}, {}, false, false};

TEST_F(DeepHoldSupervisorTest, AsksOnceAtATimeAndForTheStatusAfterEachChange) {
  supervisor_.follow(false);
  EXPECT_EQ(asked(), "") << "nothing to give back";
  for (int i = 0; i < 3; ++i) supervisor_.follow(true);
  EXPECT_EQ(asked(), "acquire ");
  EXPECT_EQ(evidence(), "pending");
  granted(true);
  EXPECT_EQ(asked(), "status ");
  tells(kHolds);
  EXPECT_EQ(evidence(), "held");
  supervisor_.follow(true);
  granted(true);
  EXPECT_EQ(asked(), "acquire ") << "nothing changed";
  supervisor_.follow(true);
  granted(false);
  EXPECT_EQ(asked(), "acquire status ");
  EXPECT_EQ(evidence(), "refused");
  tells({});
  EXPECT_EQ(evidence(), "unavailable");
  supervisor_.follow(false);
  EXPECT_EQ(asked(), "release status ");
  EXPECT_EQ(evidence(), "");
}

TEST_F(DeepHoldSupervisorTest, AnAnswerForAnEndedHoldSaysNothingOfTheNext) {
  supervisor_.follow(true);
  supervisor_.follow(false);
  supervisor_.follow(true);
  EXPECT_EQ(asked(), "acquire release acquire status ");
  const auto first = controller_->acquireAnswers.at(0);
  controller_->acquireAnswers.erase(controller_->acquireAnswers.begin());
  first(false);
  tells(kIdle);
  EXPECT_EQ(evidence(), "pending");
  supervisor_.follow(true);
  EXPECT_EQ(asked(), "") << "the second is still under way";
  granted(true);
  EXPECT_EQ(asked(), "status ");
  tells({true, true, "A", {}, false, false});
  EXPECT_EQ(evidence(), "pending") << "granted, but sleep is not switched off";
  const Date now = Date::sinceReferenceDate(1000);
  for (const double second : {0, 1, 2}) {
    supervisor_.tick(now + second);
    EXPECT_EQ(asked(), "status ") << "soon looked at again";
    tells({true, true, "A", {}, false, second == 2});
  }
  EXPECT_EQ(evidence(), "held");
  supervisor_.tick(now + 3);
  EXPECT_EQ(asked(), "");
}

TEST_F(DeepHoldSupervisorTest, KnowsTheHelperWithinTenSecondsAndSaysWhenItChanged) {
  int changes = 0;
  supervisor_.setOnChange([&] { ++changes; });
  Date now = Date::sinceReferenceDate(1000);
  supervisor_.tick(now);
  EXPECT_EQ(asked(), "status ");
  tells(kIdle);
  tells(kIdle);
  supervisor_.tick(now + 9.9);
  EXPECT_EQ(asked(), "");
  supervisor_.tick(now + 10);
  EXPECT_EQ(asked(), "status ");
  supervisor_.tick(now + 20);
  EXPECT_EQ(asked(), "") << "one at a time";
  tells(kIdle);
  EXPECT_EQ(asked(), "status ") << "the answer may be older than the question";
  EXPECT_EQ(changes, 1);
  supervisor_.tick(now - 3600);
  tells(kHolds);
  EXPECT_EQ(changes, 2);
  EXPECT_EQ(supervisor_.helperStatus().get(), kHolds);
}

}  // namespace
}  // namespace kestrel
