#include <chrono>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <semaphore>
#include <string>
#include <system_error>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Agents/HookEventReceiver.h"
#include "KestrelPlatform/Simulated/SimulatedPeerIdentity.h"

namespace kestrel {
namespace {

using testing::StartsWith;

const std::string kRecord = R"({"agent":"codex","state":"idle"})";
const std::string kAccepted = "{\"ok\":true}\n";

class Recorder final : public HookEventReceiverDelegate {
 public:
  void didReceiveHookEvent(const HookEvent& event) override {
    if (beforeRecording) beforeRecording();
    last_ = event.sessionId;
    arrived_.release();
  }
  /// Waits for the next event's session.
  std::string next() { return arrived_.try_acquire_for(std::chrono::seconds(10)) ? last_ : "none"; }

  std::function<void()> beforeRecording;

 private:
  std::string last_;
  std::counting_semaphore<> arrived_{0};
};

class HookEventReceiverTest : public testing::Test {
 protected:
  HookEventReceiverTest() { receiver_.setDelegate(recorder_); }

  std::string send(std::string_view record) const {
    const SocketClient client(path_);
    client.send(record);
    return client.receive();
  }

  TestWorld world_;
  const std::string path_ = world_.directories().hookSocket();
  const std::shared_ptr<SimulatedPeerIdentity> peers_ = std::make_shared<SimulatedPeerIdentity>();
  const std::shared_ptr<Recorder> recorder_ = std::make_shared<Recorder>();
  HookEventReceiver receiver_{path_, peers_, world_.policy, world_.clock, world_.sink};
};

TEST_F(HookEventReceiverTest, AnswersEachRecordWithOneLine) {
  receiver_.start();
  EXPECT_EQ(send("{}"), "{\"ok\":false,\"error\":\"Missing required key 'agent'\"}\n");
  EXPECT_EQ(send("\x01\"}\n"), "{\"ok\":false,\"error\":\"The data is not valid JSON (at byte 1)\"}\n");
  EXPECT_EQ(send(R"({"agent":"Gemini","state":"x","pid":7)" + std::string(12'000, ' ') + "}"), kAccepted);
  EXPECT_EQ(recorder_->next(), "gemini-7");
  EXPECT_EQ(world_.sink->count("Failed to parse hook event (2 bytes): Missing required key 'agent'"), 1U);
}

TEST_F(HookEventReceiverTest, TakesARecordFromExactlyOneRead) {
  receiver_.start();
  EXPECT_THAT(send(R"({"agent":"codex","state":"idle","cwd":")" + std::string(70'000, 'x') + "\"}"),
              StartsWith("{\"ok\":false"));
  EXPECT_THAT(send(R"({"agent":"codex",)"), StartsWith("{\"ok\":false"));
  EXPECT_EQ(send(kRecord), kAccepted);
  EXPECT_EQ(recorder_->next(), "codex-default");
}

TEST_F(HookEventReceiverTest, ASilentClientIsClosedAfterASecondWithoutAReply) {
  receiver_.start();
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(send(""), "");
  const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
  EXPECT_GT(waited.count(), 0.9);
  EXPECT_LT(waited.count(), 5);
  EXPECT_EQ(send(kRecord), kAccepted);
}

TEST_F(HookEventReceiverTest, AcknowledgesBeforeTheDelegateRuns) {
  std::binary_semaphore acknowledged(0);
  bool inTime = false;
  recorder_->beforeRecording = [&] { inTime = acknowledged.try_acquire_for(std::chrono::seconds(10)); };
  receiver_.start();
  const SocketClient client(path_);
  client.send(kRecord);
  // The connection is closed only after the delegate is through, so its end cannot be waited for.
  EXPECT_EQ(client.receive(kAccepted.size()), kAccepted);
  acknowledged.release();
  EXPECT_EQ(recorder_->next(), "codex-default");
  EXPECT_TRUE(inTime);
}

TEST_F(HookEventReceiverTest, IsPrivateToTheUser) {
  receiver_.start();
  EXPECT_EQ(modeOf(path_) & 0777U, 0600U);
  peers_->set(::geteuid() + 1);
  EXPECT_EQ(send(kRecord), "");
  peers_->set(std::nullopt);
  EXPECT_EQ(send(kRecord), "");
  peers_->set(::geteuid());
  EXPECT_EQ(send(kRecord), kAccepted);
}

TEST_F(HookEventReceiverTest, TellsWhatKeptItFromStartingAndMayTryAgain) {
  const auto start = [&](const std::string& path) {
    HookEventReceiver(path, peers_, world_.policy, world_.clock, world_.sink).start();
  };
  EXPECT_THROW(start(world_.folders.root() / "elsewhere/kestrel.sock"), KestrelWriteSecurityError);
  EXPECT_THROW(start(path_ + std::string(90, 'k')), HookEventError);
  const auto run = world_.directories().runDirectory();
  std::filesystem::remove_all(run);
  writeFixture(run, "a file where the folder should be");
  EXPECT_THROW(receiver_.start(), std::filesystem::filesystem_error);
  std::filesystem::remove(run);
  std::filesystem::create_directories(path_);
  EXPECT_THROW(receiver_.start(), std::system_error);
  std::filesystem::remove(path_);
  receiver_.start();
  EXPECT_EQ(send(kRecord), kAccepted);
}

}  // namespace
}  // namespace kestrel
