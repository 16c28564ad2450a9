#include <future>
#include <list>
#include <string>

#include "tests/core/AppCoordinatorFixture.h"

#include "KestrelCore/Control/ControlServer.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelCore/Support/SerialQueue.h"
#include "KestrelCore/Support/UnixSocket.h"

namespace kestrel {
namespace {

/// Virtual time: the server moves only when the test runs the executor.
class ControlServerTest : public AppCoordinatorFixture {
 protected:
  ControlServerTest() { EXPECT_TRUE(server_.start()); }

  std::string exchange(std::string_view request) {
    const SocketClient client(path_);
    client.send(request);
    client.finishSending();
    executor_.runPending();
    return client.receive();
  }

  const std::string path_ = world_.directories().controlSocket();
  ControlService service_{*app_, [] { return false; }};
  ControlServer server_{executor_,     path_,       machine_.platform.peerIdentity,
                        world_.policy, world_.sink, service_};
};

TEST_F(ControlServerTest, AnswersEachRequest) {
  const struct {
    std::string request;
    std::string expected;
  } rows[] = {
      {R"({"command":"show"})", R"({"ok":true,"result":{"shown":false}})"},
      {"{}", R"({"error":"Missing required key 'command'","ok":false})"},
      {"\xff\"", "{\"error\":\"The data is not valid JSON (at byte 1)\",\"ok\":false}"},
      {R"({"command":"hold","arguments":["on",1]})",
       R"({"error":"The value for key 'arguments' is not a list of strings","ok":false})"},
      {R"({"command":")" + std::string(64 * 1024, 'x') + "\"}",
       R"({"error":"The request is too large","ok":false})"},
      {"", ""},
  };
  // What is too large for a client becomes a failure that is not.
  EXPECT_THAT(encodeControlReply(ControlReply::success(std::string(ControlReply::kMaximumBytes, 'x'))),
              testing::HasSubstr("The answer is too large"));
  for (const auto& row : rows) EXPECT_EQ(exchange(row.request), row.expected) << row.request.substr(0, 60);
}

TEST_F(ControlServerTest, TakesARequestInPiecesBesideASilentClient) {
  const SocketClient silent(path_);
  const SocketClient slow(path_);
  for (const std::string_view piece : {R"({"com)", R"(mand":"sh)", R"(ow"})"}) {
    slow.send(piece);
    executor_.advance(0.5);
  }
  slow.finishSending();
  executor_.runPending();
  EXPECT_EQ(slow.receive(), R"({"ok":true,"result":{"shown":false}})");
  executor_.advance(0.49);
  EXPECT_GT(executor_.watchCount(), 1U) << "the silent client still has time";
  executor_.advance(0.02);
  EXPECT_EQ(executor_.watchCount(), 1U);
  EXPECT_EQ(silent.receive(), "");
}

TEST_F(ControlServerTest, SendsALongAnswerToASlowReader) {
  for (int i = 0; i < 2000; ++i) {
    HookEvent event;
    event.sessionId = "session-" + std::to_string(i);
    event.cwd = std::string(500, 'p');
    event.timestamp = world_.clock->now();
    app_->agentCoordinator().didReceiveHookEvent(event);
  }
  app_->evaluate();
  const SocketClient client(path_);
  client.send(R"({"command":"sessions"})");
  client.finishSending();
  executor_.runPending();
  EXPECT_EQ(executor_.watchCount(), 2U) << "the rest waits for the reader";
  auto reply = std::async(std::launch::async, [&] { return client.receive(); });
  while (reply.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready) executor_.runPending();
  const ControlReply decoded = decodeControlReply(reply.get());
  ASSERT_TRUE(decoded.ok());
  EXPECT_EQ(decoded.result->at("sessions").size(), 2000U);
}

TEST_F(ControlServerTest, BoundsItsClientsAndRefusesOtherUsers) {
  std::list<SocketClient> clients;
  for (int i = 0; i < 80; ++i) {
    clients.emplace_back(path_);
    executor_.runPending();
  }
  EXPECT_EQ(executor_.watchCount(), 65U) << "64 clients and the listener";
  EXPECT_EQ(clients.back().receive(), "");
  executor_.advance(2.1);
  EXPECT_EQ(executor_.watchCount(), 1U);
  machine_.peerIdentity->set(::geteuid() + 1);
  EXPECT_EQ(exchange(R"({"command":"show"})"), "");
  machine_.peerIdentity->set(::geteuid());
  EXPECT_NE(exchange(R"({"command":"show"})"), "");
}

TEST(SocketExchange, TellsAReplyFromAnAbsentAndABrokenServer) {
  const TestWorld world;
  const std::string path = world.directories().controlSocket();
  SerialQueue queue("test");
  const UnixSocketServer::Protocol protocol{UnixSocketServer::Reading::untilEndOfFile, 1000, 2, "too large"};
  const auto ask = [&](std::size_t length) {
    return exchangeOverSocket(path, std::string(length, 'x'), 10, 100);
  };
  using Outcome = SocketExchange::Outcome;
  EXPECT_EQ(ask(1).outcome, Outcome::nobodyListens);
  UnixSocketServer server(queue, path, protocol, std::make_shared<SimulatedPeerIdentity>(), world.policy,
                          Logger(world.sink, "test"),
                          [](std::string_view request) -> UnixSocketServer::Reply {
                            return {std::string(request.size(), 'y'), {}};
                          });
  ASSERT_FALSE(server.start());
  EXPECT_EQ(ask(100).reply, std::string(100, 'y'));
  EXPECT_EQ(ask(101).outcome, Outcome::failed) << "a longer reply than allowed";
  // The server answers without reading the rest.
  EXPECT_EQ(ask(1'000'000).reply, "too large");
}

}  // namespace
}  // namespace kestrel
