#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Power/DeepSleepController.h"
#include "KestrelCore/Support/PrivateFolder.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Support/UnixSocketServer.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/SimulatedPeerIdentity.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DeepSleepControllerTest : public testing::Test {
 protected:
  /// A helper that answers everything with `reply_` and writes down what it was asked.
  void startHelper() {
    server_ = std::make_unique<UnixSocketServer>(
        serverQueue_, socketPath(), UnixSocketServer::Protocol{}, std::make_shared<SimulatedPeerIdentity>(),
        world_.policy, Logger(world_.sink, "test"), [this](std::string_view request) {
          requests_.emplace_back(request);
          return UnixSocketServer::Reply{reply_, {}};
        });
    ASSERT_FALSE(server_->start());
  }
  std::string socketPath() const { return DeepSleepController::defaultSocketPath(world_.directories()); }
  std::vector<std::string> takeRequests() { return std::exchange(requests_, {}); }

  bool acquire(double seconds) {
    bool granted = false;
    controller_->acquire(seconds, [&](bool answer) { granted = answer; });
    actor_->runPending();
    return granted;
  }
  DeepSleepStatus status() {
    DeepSleepStatus result;
    controller_->status([&](const DeepSleepStatus& answer) { result = answer; });
    actor_->runPending();
    return result;
  }
  void release() {
    controller_->release([] {});
    actor_->runPending();
  }
  static std::string request(const std::string& command, const std::string& lease, const std::string& ttl) {
    return R"({"command":")" + command + R"(","leaseId":")" + lease + "\"" +
           (ttl.empty() ? "" : R"(,"ttlSeconds":)" + ttl) + "}";
  }
  static std::string leaseIn(const std::string& request) {
    return decodeHelperRequest(request).leaseId.value_or("");
  }

  TestWorld world_;
  std::string reply_ = R"({"ok":true})";
  std::vector<std::string> requests_;
  SerialQueue serverQueue_{"helper"};
  std::unique_ptr<UnixSocketServer> server_;
  ManualExecutor* actor_ = new ManualExecutor;
  ManualExecutor* renewals_ = new ManualExecutor;
  const std::unique_ptr<DeepSleepController> controller_ = std::make_unique<DeepSleepController>(
      socketPath(), std::unique_ptr<Executor>(actor_), std::unique_ptr<Executor>(renewals_), world_.sink);
};

TEST_F(DeepSleepControllerTest, KeepsOneLeaseAliveUntilItIsReleased) {
  startHelper();
  EXPECT_TRUE(acquire(60));
  const auto first = takeRequests();
  ASSERT_EQ(first.size(), 1U);
  const std::string lease = leaseIn(first[0]);
  EXPECT_THAT(lease,
              testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
  EXPECT_EQ(first[0], request("acquire", lease, "60.0"));

  renewals_->advance(14.9);
  EXPECT_THAT(takeRequests(), IsEmpty());
  renewals_->advance(0.1);
  EXPECT_THAT(takeRequests(), ElementsAre(request("renew", lease, "60.0")));

  EXPECT_TRUE(acquire(8));
  EXPECT_THAT(takeRequests(), ElementsAre(request("acquire", lease, "8.0")));
  EXPECT_EQ(renewals_->timerCount(), 1U);
  renewals_->advance(10);
  EXPECT_THAT(takeRequests(), ElementsAre(request("renew", lease, "8.0"), request("renew", lease, "8.0")))
      << "every 5 seconds";

  release();
  EXPECT_THAT(takeRequests(), ElementsAre(request("release", lease, "")));
  EXPECT_EQ(renewals_->timerCount(), 0U);
  release();
  EXPECT_THAT(takeRequests(), IsEmpty()) << "nothing to give back";
  EXPECT_TRUE(acquire(60));
  EXPECT_NE(leaseIn(takeRequests().at(0)), lease);
}

TEST_F(DeepSleepControllerTest, ARefusalKeepsTheIdentifierAndStartsNoRenewal) {
  startHelper();
  for (const char* reply : {R"({"ok":false,"error":"too hot"})", "garbage", R"({"ok":"yes"})", "[]"}) {
    reply_ = reply;
    EXPECT_FALSE(acquire(60)) << reply;
  }
  EXPECT_EQ(renewals_->timerCount(), 0U);
  const auto asked = takeRequests();
  bool isActive = false;
  controller_->isDeepHoldActive([&](bool answer) { isActive = answer; });
  actor_->runPending();
  EXPECT_TRUE(isActive);
  reply_ = R"({"ok":true})";
  EXPECT_TRUE(acquire(60));
  EXPECT_EQ(leaseIn(takeRequests().at(0)), leaseIn(asked.at(0)));
}

TEST_F(DeepSleepControllerTest, WithoutAHelperNothingIsInstalled) {
  EXPECT_EQ(status(), DeepSleepStatus());
  EXPECT_FALSE(acquire(60));
  EXPECT_EQ(DeepSleepController::sendStaticRequest({}, "/" + std::string(103, 'x')), std::nullopt);
  startHelper();
  reply_ = R"({"ok":true,"status":{"isHelperInstalled":true,"isDeepHoldActive":true,"activeLeaseId":"A",)"
           R"("leaseExpiresAt":800000000.5,"originalSleepDisabledState":false,)"
           R"("currentSystemSleepDisabled":true,"later":1}})";
  EXPECT_EQ(status(), (DeepSleepStatus{true, true, "A", Date::sinceReferenceDate(800000000.5), false, true}));
  reply_ = R"({"ok":false,"error":"busy"})";
  EXPECT_EQ(status(), DeepSleepStatus());
  EXPECT_EQ(takeRequests().back(), R"({"command":"status"})");
}

TEST_F(DeepSleepControllerTest, PrefersTheHelperOfTheWholeMachine) {
  EXPECT_EQ(socketPath(), world_.directories().userHelperSocket());
  ASSERT_EQ(createPrivateFolders(world_.directories().systemHelperSocket.parent_path()), 0);
  writeFixture(world_.directories().systemHelperSocket, "");
  EXPECT_EQ(socketPath(), world_.directories().systemHelperSocket);
}

}  // namespace
}  // namespace kestrel
