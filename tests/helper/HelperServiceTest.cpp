#include <gmock/gmock.h>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelHelper/HelperService.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/SimulatedHelperPlatform.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kAcquire = R"({"command":"acquire","leaseId":"A","ttlSeconds":60})";
const std::string kOk = R"({"ok":true})";

std::string refused(const std::string& reason) {
  return R"({"error":")" + reason + R"(","ok":false})";
}

/// The helper with a scripted machine and virtual time; `restart` is a death without farewell and a new
/// start.
class HelperServiceTest : public testing::Test {
 protected:
  HelperServiceTest() { restart(); }

  void restart() {
    server_.reset();
    service_.reset();
    store_.emplace(*machine_.sleepOverride, DeepHoldLeaseStore::StateFile{stateFile_, files_}, world_.clock,
                   world_.sink);
    service_.emplace(HelperService::Context{machine_.platform, *store_, executor_, world_.clock, world_.sink},
                     [this] { ++uninstallations_; });
    service_->start();
    server_.emplace(executor_, path_, HelperService::protocol(machine_.platform.seat),
                    machine_.platform.peerIdentity, world_.policy, Logger(world_.sink, "test"),
                    [this](std::string_view request) { return service_->answer(request); });
    EXPECT_FALSE(server_->start());
  }
  std::string answer(const std::string& request) { return service_->answer(request).bytes; }
  /// Over the socket; the client does not say that it is done.
  std::string exchange(std::string_view request) {
    const SocketClient client(path_);
    client.send(request);
    executor_.runPending();
    return client.receive();
  }
  [[nodiscard]] bool isHolding() const { return store_->state().isHolding; }

  TestWorld world_;
  ManualExecutor executor_{world_.clock};
  SimulatedHelperPlatform machine_ = simulatedHelperPlatform();
  const std::filesystem::path stateFile_ = world_.directories().runDirectory() / "helper-state.json";
  const std::string path_ = world_.directories().userHelperSocket();
  const std::shared_ptr<const AtomicFileWriter> files_ =
      std::make_shared<AtomicFileWriter>(world_.policy, Logger(world_.sink, "files"));
  std::optional<DeepHoldLeaseStore> store_;
  std::optional<HelperService> service_;
  std::optional<UnixSocketServer> server_;
  int uninstallations_ = 0;
};

TEST_F(HelperServiceTest, AnswersEachRequest) {
  const std::pair<std::string, std::string> rows[] = {
      {R"({"command":"status"})",
       R"({"ok":true,"status":{"currentSystemSleepDisabled":false,"isDeepHoldActive":false,)"
       R"("isHelperInstalled":true,"originalSleepDisabledState":false}})"},
      {R"({"command":"renew","leaseId":"A","ttlSeconds":60})", refused("No deep hold is active")},
      {R"({"command":"acquire","ttlSeconds":60})", refused("leaseId is missing")},
      {R"({"command":"renew","leaseId":"A"})", refused("ttlSeconds is missing")},
      {R"({"command":"acquire","leaseId":"A","ttlSeconds":86400.5})", refused("ttlSeconds is too large")},
      {R"({"command":"release","leaseId":")" + std::string(257, 'x') + "\"}", refused("leaseId is too long")},
      {R"({"command":"release"})", kOk},
      {kAcquire, kOk},
      {R"({"command":"release","leaseId":"B"})", refused("Another lease is active")},
      {R"({"command":"renew","leaseId":"B","ttlSeconds":-1})", kOk},
      {R"({"command":"release"})", kOk},
  };
  for (const auto& [request, expected] : rows) EXPECT_EQ(answer(request), expected) << request;
  EXPECT_THAT(machine_.sleepOverride->writes(), ElementsAre(true, false));
  EXPECT_TRUE(store_->acquire(std::string(HelperService::kMaximumLeaseIdBytes, '\x01'), 60));
  EXPECT_LT(answer(R"({"command":"status"})").size(), HelperResponse::kMaximumBytes);
}

TEST_F(HelperServiceTest, ReadsUntilAnObjectIsCompleteBesideSlowClients) {
  const SocketClient slow(path_);
  slow.send("{");
  executor_.advance(0.9);
  EXPECT_EQ(exchange(R"( {"a":"}\"}","b":{"c":"\\"},)" + kAcquire.substr(1) + "{}"), kOk)
      << "the first object";
  EXPECT_TRUE(isHolding());
  EXPECT_EQ(exchange(std::string(8193, ' ')), refused("The request is too large"));
  EXPECT_THAT(exchange("GET / HTTP/1.1"), HasSubstr("not valid JSON")) << "nothing could complete it";
  executor_.advance(0.2);
  EXPECT_THAT(slow.receive(), HasSubstr("not valid JSON"));
}

TEST_F(HelperServiceTest, EndsWhatNobodyRenewsWhateverTheClockDoes) {
  answer(kAcquire);
  executor_.advance(59.9);
  EXPECT_TRUE(isHolding());
  executor_.advance(2.1);
  EXPECT_FALSE(isHolding());
  answer(kAcquire);
  world_.clock->set(world_.clock->now() - 1e6);
  executor_.advance(61);
  EXPECT_TRUE(isHolding());
  executor_.advance(4);
  EXPECT_FALSE(isHolding());
}

TEST_F(HelperServiceTest, SleepsBehindALidThatWasClosedMeanwhile) {
  const auto sleepsAfter = [&](const std::function<void()>& end) {
    const int before = machine_.sleep->count();
    answer(kAcquire);
    end();
    return machine_.sleep->count() - before;
  };
  const auto release = [&] { answer(R"({"command":"release"})"); };
  EXPECT_EQ(sleepsAfter(release), 0) << "no lid is known";
  machine_.lid->set(true);
  EXPECT_EQ(sleepsAfter(release), 1);
  EXPECT_EQ(sleepsAfter([&] { executor_.advance(62); }), 1);
  EXPECT_EQ(sleepsAfter([&] { service_->stop(); }), 1);
  machine_.sleepOverride->set(true);
  EXPECT_EQ(sleepsAfter(release), 0) << "the owner had switched sleep off";
}

TEST_F(HelperServiceTest, LetsGoInDangerUntilThatIsOver) {
  const auto battery = [&](std::int64_t percent, const char* source, bool charging) {
    machine_.powerSource->set(PowerSource::List{PowerSourceDescription{source, charging, percent, 100, {}}});
    machine_.powerSource->fireChange();
    return isHolding();
  };
  const auto heat = [&](int level) {
    machine_.thermal->set(level);
    machine_.thermal->fireChange();
    return isHolding();
  };
  answer(kAcquire);
  EXPECT_TRUE(battery(3, "Battery Power", true) && battery(3, "AC Power", false));
  EXPECT_TRUE(battery(4, "Battery Power", false) && heat(2));
  EXPECT_FALSE(battery(3, "Battery Power", false));
  EXPECT_EQ(answer(kAcquire), refused("The battery is almost empty"));
  battery(4, "Battery Power", false);
  EXPECT_EQ(answer(kAcquire), kOk);
  EXPECT_FALSE(heat(3));
  EXPECT_EQ(answer(R"({"command":"renew","leaseId":"A","ttlSeconds":60})"),
            refused("The machine is too hot"));
  EXPECT_THAT(machine_.sleepOverride->writes(), ElementsAre(true, false, true, false));
}

TEST_F(HelperServiceTest, RepairsWhatADeadHelperLeft) {
  const auto writesOfStart = [&] {
    const std::size_t before = machine_.sleepOverride->writes().size();
    restart();
    const auto& all = machine_.sleepOverride->writes();
    return std::vector<bool>(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
  };
  answer(kAcquire);
  EXPECT_THAT(writesOfStart(), ElementsAre(true)) << "the switch may have died with its helper";
  EXPECT_TRUE(isHolding());
  world_.clock->advance(60);
  EXPECT_THAT(writesOfStart(), ElementsAre(false)) << "it lapsed while no helper ran";
  for (const char* end : {"", R"("expiresAt":1e300,)"}) {
    writeFixture(stateFile_, "{" + std::string(end) + R"("isHolding":true,"originalSleepDisabled":false})");
    EXPECT_THAT(writesOfStart(), ElementsAre(false)) << "a hold without a credible end";
  }
  machine_.sleepOverride->set(true);
  writeFixture(stateFile_, "garbage");
  EXPECT_THAT(writesOfStart(), IsEmpty()) << "nothing says whose it is";
  answer(kAcquire);
  EXPECT_THAT(writesOfStart(), IsEmpty()) << "it was the owner's";
  EXPECT_TRUE(isHolding());
}

TEST_F(HelperServiceTest, GoesWhenToldAlsoIfTheClientIsGone) {
  answer(R"({"command":"uninstall"})");
  executor_.advance(1.1);
  EXPECT_EQ(uninstallations_, 1);
}

}  // namespace
}  // namespace kestrel
