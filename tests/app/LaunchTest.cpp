#include <QtGlobal>
#include <chrono>
#include <fcntl.h>
#include <future>
#include <gmock/gmock.h>
#include <thread>
#include <unistd.h>

#include "tests/core/TestSupport.h"

#include "KestrelApp/DisplayGuard.h"
#include "KestrelApp/Launch.h"
#include "KestrelApp/SessionHandover.h"

namespace kestrel {
namespace {

TEST(Launch, ChoosesWindowsWhenSomebodyMaySeeThem) {
  const std::vector<std::string> plain{"kestrel", "--unknown"};
  EXPECT_EQ(chooseFrontEnd(plain, true), FrontEnd::desktop);
  EXPECT_EQ(chooseFrontEnd(plain, false), FrontEnd::headless);
  EXPECT_EQ(chooseFrontEnd({"kestrel", "x", "--headless"}, true), FrontEnd::headless);
}

TEST(Launch, CannotLoopAfterALostDisplay) {
  const auto command = commandWithoutDisplay("/opt/kestrel", 7);
  EXPECT_EQ(command[0], "/opt/kestrel");
  EXPECT_EQ(chooseFrontEnd(command, true), FrontEnd::headless);
  EXPECT_EQ(sessionsOfLostDisplay(command), 7);
  EXPECT_EQ(sessionsOfLostDisplay(commandWithoutDisplay("kestrel", -1)), -1);
  for (const char* strange : {"--after-display=", "--after-display=x", "--after-display=1"})
    EXPECT_EQ(sessionsOfLostDisplay({"kestrel", strange}), -1) << strange;
  EXPECT_EQ(sessionsOfLostDisplay({"kestrel", "--headless"}), std::nullopt);
}

/// Qt tells of a lost display on several threads, and each ends the process when it has.
TEST(DisplayGuardDeathTest, LeavesOnceAndLetsNobodyEndTheProcessMeanwhile) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto lose = [] { qWarning("The Wayland connection broke. Did the Wayland compositor die?"); };
  const auto live = [&] {
    std::promise<void> ended;
    std::thread other;
    const DisplayGuard guard(Logger(nullptr, "test"), [&] {
      other = std::thread([&] { lose(), ended.set_value(); });
      const auto fate = ended.get_future().wait_for(std::chrono::milliseconds(200));
      ::_exit(fate == std::future_status::timeout ? 7 : 1);
    });
    lose();
  };
  EXPECT_EXIT(live(), testing::ExitedWithCode(7), "");
}

AgentSessionPtr session(const std::string& id, AgentState state, IntegrationType integration) {
  AgentSession made;
  made.id = id;
  made.agentType = AgentType::codex;
  made.state = state;
  made.integrationType = integration;
  made.lastEventAt = Date::since1970(1000);
  made.pid = 42;
  made.cwd = "/home/u/p";
  return std::make_shared<AgentSession>(made);
}

TEST(SessionHandover, TellsWhatHooksReported) {
  const SessionTable table{{"a", session("a", AgentState::idle, IntegrationType::lifecycleHook)},
                           {"b", session("b", AgentState::stale, IntegrationType::lifecycleHook)},
                           {"c", session("c", AgentState::working, IntegrationType::process)},
                           {"d", session("d", AgentState::working, IntegrationType::lifecycleHook)}};
  const auto events = takeOverSessions(handOverSessions(table), Date::since1970(2000));
  ASSERT_EQ(events.size(), 2U);
  EXPECT_EQ(events[0].sessionId, "d");
  EXPECT_EQ(events[0].agent, AgentType::codex);
  EXPECT_EQ(events[0].state, AgentState::working);
  EXPECT_EQ(events[0].timestamp, Date::since1970(1000));
  EXPECT_EQ(events[0].pid, 42);
  EXPECT_EQ(events[0].cwd, "/home/u/p");
  EXPECT_EQ(events[1].sessionId, "a");
}

TEST(SessionHandover, NeverWaitsForRoomAndTellsWholeLines) {
  SessionTable table;
  for (int i = 0; i < 3000; ++i) {
    const std::string id = "s" + std::to_string(i);
    table[id] =
        session(id, i == 2999 ? AgentState::working : AgentState::idle, IntegrationType::lifecycleHook);
  }
  const auto events = takeOverSessions(handOverSessions(table), Date::since1970(2000));
  ASSERT_GT(events.size(), 100U);
  EXPECT_EQ(events[0].sessionId, "s2999");
}

TEST(SessionHandover, IgnoresWhatIsNoPipeOrNoSession) {
  EXPECT_TRUE(takeOverSessions(UniqueDescriptor(-1), Date::since1970(0)).empty());
  EXPECT_TRUE(takeOverSessions(UniqueDescriptor(::open("/dev/zero", O_RDONLY)), Date::since1970(0)).empty());
  std::array<int, 2> ends{};
  ASSERT_EQ(::pipe(ends.data()), 0);
  const UniqueDescriptor input(ends[1]);
  const std::string text = "rubbish\n{\"agent\":\"claude\",\"state\":\"working\"}\n{\"agent\":\"clau";
  ASSERT_EQ(::write(input.get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
  EXPECT_EQ(takeOverSessions(UniqueDescriptor(ends[0]), Date::since1970(0)).size(), 1U);
}

}  // namespace
}  // namespace kestrel
