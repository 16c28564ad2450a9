#include <cmath>
#include <gmock/gmock.h>
#include <limits>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Power/DeepHoldLeaseStore.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelPlatform/Simulated/SimulatedHelperPlatform.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DeepHoldLeaseStoreTest : public testing::Test {
 protected:
  /// As a helper that starts, with the switch as it stands.
  DeepHoldLeaseStore& restart() {
    const auto files = std::make_shared<AtomicFileWriter>(world_.policy, Logger(world_.sink, "files"));
    return store_.emplace(override_, DeepHoldLeaseStore::StateFile{path_, files}, world_.clock, world_.sink);
  }

  TestWorld world_;
  SimulatedSleepOverride override_;
  const std::filesystem::path path_ = world_.directories().runDirectory() / "helper-state.json";
  std::optional<DeepHoldLeaseStore> store_;
};

TEST_F(DeepHoldLeaseStoreTest, GoesThroughALeaseAndTellsTheLog) {
  auto& store = restart();
  EXPECT_TRUE(store.acquire("A", 3));
  EXPECT_TRUE(store.acquire("B", 60.9));
  EXPECT_FALSE(store.release("A"));
  EXPECT_EQ(store.status(), (DeepSleepStatus{true, true, "B", world_.clock->now() + 60.9, false, true}));
  EXPECT_TRUE(store.renew("C", 20)) << "whoever renews becomes the holder";
  EXPECT_TRUE(store.release("C"));
  EXPECT_TRUE(store.release("C")) << "nothing is held";
  EXPECT_FALSE(store.renew("C", 20));
  EXPECT_EQ(store.status(), (DeepSleepStatus{true, false, {}, {}, false, false}));
  EXPECT_THAT(world_.sink->lines("lease"),
              ElementsAre("Acquired deep hold lease A (TTL: 3s, original: false)",
                          "Renewed existing deep hold with lease B",
                          "Release request for lease A ignored, active is B",
                          "Renewed lease C until 2026-11-21 03:27:25 +0000",
                          "Restored system sleep state to original: sleep enabled"));
}

TEST_F(DeepHoldLeaseStoreTest, LeavesAloneWhatTheOwnerSwitchedOff) {
  override_.set(true);
  EXPECT_TRUE(restart().acquire("A", 60));
  override_.set(false);
  EXPECT_TRUE(store_->acquire("B", 60));
  EXPECT_EQ(store_->status().originalSleepDisabledState, true) << "as the first holder found it";
  EXPECT_TRUE(store_->release(std::nullopt));
  EXPECT_THAT(override_.writes(), IsEmpty());
  EXPECT_EQ(world_.sink->count("Prior state was already sleep disabled, leaving untouched"), 1U);
}

TEST_F(DeepHoldLeaseStoreTest, EndsALeaseAtItsExpiryWhateverWasAskedFor) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  auto& store = restart();
  for (const double ttl : {-kInfinity, -1.0, 9.99, std::nan("")}) {
    EXPECT_TRUE(store.acquire("A", ttl));
    EXPECT_EQ(store.state().expiresAt, world_.clock->now() + 10) << ttl;
  }
  world_.clock->advance(9.999);
  EXPECT_FALSE(store.checkWatchdog());
  world_.clock->advance(0.001);
  EXPECT_TRUE(store.checkWatchdog());
  EXPECT_FALSE(store.checkWatchdog());
  EXPECT_EQ(world_.sink->count("Lease expired at 2026-11-21 03:27:15 +0000 (current time: 2026-11-21 "
                               "03:27:15 +0000). Watchdog releasing deep hold!"),
            1U);
  EXPECT_THAT(override_.writes(), ElementsAre(true, false));
  for (const double ttl : {1e18, 1e300, kInfinity}) {
    EXPECT_TRUE(store.acquire("A", ttl));
    const DeepHoldStateRecord held = store.state();
    EXPECT_EQ(restart().state(), held) << ttl;
    EXPECT_FALSE(store.checkWatchdog());
    EXPECT_TRUE(store.release("A"));
  }
}

TEST_F(DeepHoldLeaseStoreTest, KeepsItsStateInAFileAndTakesABadOneForAbsent) {
  EXPECT_TRUE(restart().acquire("A\n\"", 60));
  const double expiry = store_->state().expiresAt->secondsSinceReferenceDate();
  EXPECT_EQ(parseJson(*readWholeFile(path_, 1000)), (Json{{"isHolding", true},
                                                          {"activeLeaseId", "A\n\""},
                                                          {"expiresAt", expiry},
                                                          {"originalSleepDisabled", false}}));
  restart();
  EXPECT_THAT(override_.writes(), ElementsAre(true)) << "loading touches nothing";
  for (const std::string content :
       {"", "[]", R"({"isHolding":true})", R"({"isHolding":1,"originalSleepDisabled":false})",
        R"({"isHolding":true,"originalSleepDisabled":false,"expiresAt":"soon"})",
        R"({"isHolding":true,"originalSleepDisabled":false,"activeLeaseId":7})"}) {
    writeFixture(path_, content);
    EXPECT_EQ(restart().state(), (DeepHoldStateRecord{false, {}, {}, true})) << content;
  }
  std::filesystem::remove(path_);
  std::filesystem::create_directories(path_);
  EXPECT_TRUE(restart().acquire("A", 60)) << "a file that cannot be written";
}

}  // namespace
}  // namespace kestrel
