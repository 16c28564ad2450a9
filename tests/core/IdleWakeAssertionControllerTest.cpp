#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "KestrelCore/Power/HoldStatus.h"
#include "KestrelCore/Power/IdleWakeAssertionController.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/SimulatedPowerAssertions.h"

namespace kestrel {
namespace {

class IdleWakeAssertionControllerTest : public testing::Test {
 protected:
  /// The calls since the last question: "+" created, "-" released, "!" failed; S system, D display; the id.
  std::string newCalls() {
    std::string text;
    const auto calls = assertions_.calls();
    for (; seen_ < calls.size(); ++seen_) {
      const auto& call = calls[seen_];
      const bool created = call.operation == SimulatedPowerAssertions::Operation::create;
      text += text.empty() ? "" : " ";
      text += !created ? "-" : call.id == 0 ? "!" : "+";
      text += call.type == "PreventUserIdleDisplaySleep" ? "D" : "S";
      text += std::to_string(call.id);
    }
    return text;
  }
  void failWith(std::string_view type, std::int32_t code) { assertions_.setCreateCode(type, code); }

  SimulatedPowerAssertions assertions_;
  const std::shared_ptr<MemoryLogSink> sink_ = std::make_shared<MemoryLogSink>();
  std::unique_ptr<IdleWakeAssertionController> controller_ =
      std::make_unique<IdleWakeAssertionController>(assertions_, sink_);

 private:
  std::size_t seen_ = 0;
};

TEST_F(IdleWakeAssertionControllerTest, TakesOnceAndReleasesOnce) {
  controller_->release();
  controller_->acquire("Claude Code working", false);
  controller_->acquire("another reason", false);
  EXPECT_EQ(newCalls(), "+S1");
  EXPECT_EQ(assertions_.calls().front().name, "Kestrel: Claude Code working");
  EXPECT_EQ(assertions_.calls().front().level, 255U);
  controller_->release();
  controller_->release();
  EXPECT_EQ(newCalls(), "-S1");
}

TEST_F(IdleWakeAssertionControllerTest, AChangedDisplayFlagRecreatesBoth) {
  controller_->acquire("r", true);
  controller_->acquire("r", true);
  EXPECT_EQ(newCalls(), "+S1 +D2");
  controller_->acquire("r", false);
  EXPECT_EQ(newCalls(), "-S1 -D2 +S3");
  controller_->acquire("r", true);
  EXPECT_EQ(newCalls(), "-S3 +S4 +D5");
  controller_.reset();
  EXPECT_EQ(newCalls(), "-S4 -D5") << "nothing outlives the controller";
}

TEST_F(IdleWakeAssertionControllerTest, AFailureIsLoggedAndTriedAgain) {
  failWith(PowerAssertions::kPreventIdleSystemSleep, -7);
  controller_->acquire("r", true);
  EXPECT_EQ(newCalls(), "!S0") << "no display assertion without the system's";
  EXPECT_EQ(sink_->count("Failed to acquire PreventUserIdleSystemSleep assertion: -7"), 1U);

  failWith(PowerAssertions::kPreventIdleSystemSleep, 0);
  failWith(PowerAssertions::kPreventIdleDisplaySleep, 9);
  controller_->acquire("r", true);
  EXPECT_EQ(newCalls(), "+S1 !D0");

  failWith(PowerAssertions::kPreventIdleDisplaySleep, 0);
  controller_->acquire("r", true);
  EXPECT_EQ(newCalls(), "-S1 +S2 +D3");
}

TEST(HoldStatus, TellsWhatWasReadBack) {
  using enum HoldEvidenceState;
  const auto entry = [](HoldKind kind, HoldEvidenceState state) {
    return HoldEvidence{"service", kind, state, ""};
  };
  const struct {
    std::vector<HoldEvidence> evidence;
    HoldState expected;
  } rows[] = {
      {{entry(HoldKind::idle, pending)}, HoldState::wanted},
      {{entry(HoldKind::idle, held), entry(HoldKind::display, refused)}, HoldState::inForce},
      // These alone do not keep an idle machine awake.
      {{entry(HoldKind::display, held), entry(HoldKind::sleep, held)}, HoldState::wanted},
      {{entry(HoldKind::idle, lost), entry(HoldKind::sleep, held)}, HoldState::lost},
      {{entry(HoldKind::idle, lost), entry(HoldKind::desktop, held)}, HoldState::inForce},
  };
  for (const auto& row : rows) EXPECT_EQ(holdStatus(Date(), row.evidence).state, row.expected);
  EXPECT_EQ(holdStatus({}, {entry(HoldKind::idle, held)}), HoldStatus{}) << "nothing is asked for";
}

}  // namespace
}  // namespace kestrel
