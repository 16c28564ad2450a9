#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "KestrelCore/Agents/AgentStateCoordinator.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"

namespace kestrel {
namespace {

using enum AgentType;
using enum AgentState;

const Date kStart = ManualClock::kDefaultStart;

class Listener final : public AgentStateCoordinatorDelegate {
 public:
  void agentSessionsDidChange(std::optional<Date>) override {
    ++calls;
    if (onCall) onCall();
  }
  int calls = 0;
  std::function<void()> onCall;
};

ProcessMatch match(AgentType agent, std::int32_t pid, bool isWorking) {
  ProcessMatch result;
  result.agent = agent;
  result.pid = pid;
  result.isWorking = isWorking;
  return result;
}

class AgentStateCoordinatorTest : public testing::Test {
 protected:
  AgentStateCoordinatorTest() { table_.setDelegate(listener_); }

  void hook(const std::string& id, AgentType agent, AgentState state, Date timestamp = kStart,
            std::optional<std::int32_t> pid = {}) {
    HookEvent event;
    event.sessionId = id;
    event.agent = agent;
    event.state = state;
    event.timestamp = timestamp;
    event.pid = pid;
    table_.didReceiveHookEvent(event);
  }
  [[nodiscard]] AgentSession session(const std::string& id) const { return *table_.sessions()->at(id); }
  [[nodiscard]] std::optional<Date> stoppedAt() const { return table_.lastActiveAgentStoppedAt(); }
  /// "id=state id=state"
  [[nodiscard]] std::string states() const {
    std::string text;
    const auto sessions = table_.sessions();
    for (const auto& [id, session] : *sessions) {
      text += (text.empty() ? "" : " ") + id + "=" + std::string(rawValue(session->state));
    }
    return text;
  }

  const std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>();
  const std::shared_ptr<MemoryLogSink> sink_ = std::make_shared<MemoryLogSink>();
  const std::shared_ptr<Listener> listener_ = std::make_shared<Listener>();
  AgentStateCoordinator table_{clock_, sink_};
};

TEST_F(AgentStateCoordinatorTest, LaterEventsKeepWhatTheyDoNotCarry) {
  hook("s", claude, working, kStart, 7);
  const auto before = table_.sessions();
  EXPECT_EQ(session("s").lastEventDescription, "State: Working via Lifecycle Hook");
  // The identity stays with the agent that opened it, and event time may run backwards.
  hook("s", codex, waiting, kStart - 100);
  EXPECT_EQ(session("s").agentType, claude);
  EXPECT_EQ(session("s").startedAt, kStart);
  EXPECT_EQ(session("s").lastEventAt, kStart - 100);
  EXPECT_EQ(session("s").pid, 7);
  EXPECT_EQ(states(), "s=waiting");
  EXPECT_EQ(before->at("s")->state, working) << "a snapshot changed";
}

TEST_F(AgentStateCoordinatorTest, RemembersWhenTheLastActiveAgentStopped) {
  const Date eventTime = kStart - 20;
  const struct {
    const char* id;
    AgentState state;
    Date timestamp;
    std::optional<Date> expected;
  } rows[] = {
      {"a", idle, eventTime, {}},  // Nothing was active yet.
      {"a", working, kStart, {}},
      {"b", waiting, kStart, {}},
      {"a", idle, kStart, {}},  // The other one is still active.
      {"b", completed, eventTime, eventTime},
      {"b", error, kStart, eventTime},  // Nothing was active before.
  };
  for (const auto& row : rows) {
    hook(row.id, codex, row.state, row.timestamp);
    EXPECT_EQ(stoppedAt(), row.expected) << &row - rows;
  }
  EXPECT_EQ(listener_->calls, 6);
}

TEST_F(AgentStateCoordinatorTest, ATimestampFarAheadCountsAsItsArrival) {
  const struct {
    double lead;
    Date expected;
  } rows[] = {{60, kStart + 60}, {60.5, kStart}, {1e300, kStart}, {-1e300, kStart - 1e300}};
  for (const auto& row : rows) {
    hook("s", claude, working, kStart + row.lead);
    EXPECT_EQ(session("s").lastEventAt, row.expected) << row.lead;
  }
  table_.sweepStaleSessions(kStart);  // The age is beyond any integer.
  EXPECT_EQ(states(), "s=stale");
}

TEST_F(AgentStateCoordinatorTest, AScanAddsChangesAndRemovesProcessSessions) {
  const auto scan = [&](const std::vector<ProcessMatch>& matches) {
    clock_->advance(1);
    table_.syncProcessSessions(matches);
    return states();
  };
  EXPECT_EQ(scan({match(cursor, 812, true), match(aider, 5, false)}),
            "proc-aider-5=idle proc-cursor-812=working");
  EXPECT_EQ(session("proc-cursor-812").lastEventDescription, "CLI task running (PID 812)");
  scan({match(cursor, 812, true), match(aider, 5, false)});
  EXPECT_EQ(listener_->calls, 1) << "nothing changed";
  EXPECT_EQ(session("proc-cursor-812").lastEventAt, kStart + 1) << "an unchanged state is no refreshment";
  EXPECT_EQ(scan({match(cursor, 812, false), match(aider, 5, true)}),
            "proc-aider-5=working proc-cursor-812=idle");
  EXPECT_EQ(scan({match(cursor, 812, false)}), "proc-cursor-812=idle");
  EXPECT_EQ(stoppedAt(), kStart + 4) << "the last active process vanished";
}

TEST_F(AgentStateCoordinatorTest, AScanRemovesOnlyProcessSessionsWithAPid) {
  hook("hooked", cursor, working, kStart, 9);
  hook("claude-9", claude, working, kStart, 9);
  hook("cursor-default", cursor, working);
  table_.syncProcessSessions({match(aider, 9, false)});
  EXPECT_EQ(states(), "claude-9=working cursor-default=working hooked=working proc-aider-9=idle");
  table_.syncProcessSessions({});
  EXPECT_EQ(states(), "claude-9=working cursor-default=working");
}

TEST_F(AgentStateCoordinatorTest, AWorkingHookOutranksAScanThatSeesNoWork) {
  hook("s", claude, waiting);
  table_.syncProcessSessions({match(claude, 4, false), match(codex, 5, false)});
  table_.registerProcessSession(claude, 6, false, 0.9);
  EXPECT_EQ(states(), "proc-codex-5=idle s=waiting");
  table_.syncProcessSessions({match(claude, 4, true)});
  EXPECT_EQ(states(), "proc-claude-4=working s=waiting");
  hook("s", claude, idle);
  table_.syncProcessSessions({match(claude, 4, false)});
  EXPECT_EQ(states(), "proc-claude-4=idle s=idle");
  // A hook session of a family that is known by its processes has no such authority.
  hook("c", cursor, working);
  table_.registerProcessSession(cursor, 7, false, 0.9);
  EXPECT_EQ(session("proc-cursor-7").state, idle);
}

TEST_F(AgentStateCoordinatorTest, TheSweepMarksSilentSessionsAndKeepsSayingSo) {
  hook("s", claude, completed);
  table_.sweepStaleSessions(kStart + 900);
  EXPECT_EQ(states(), "s=completed");
  table_.sweepStaleSessions(kStart + 900.5);
  EXPECT_EQ(states(), "s=stale");
  EXPECT_EQ(stoppedAt(), kStart + 900.5) << "even if nothing was active before";
  table_.sweepStaleSessions(kStart + 902);
  EXPECT_EQ(listener_->calls, 3);
  EXPECT_EQ(sink_->lines().back().message, "Session s is stale (902s old). Marking stale.");
  // A stale process returns with the next scan.
  table_.syncProcessSessions({match(aider, 5, true)});
  table_.sweepStaleSessions(kStart + 903);
  EXPECT_EQ(states(), "proc-aider-5=stale s=stale");
  table_.syncProcessSessions({match(aider, 5, true)});
  EXPECT_EQ(states(), "proc-aider-5=working s=stale");
}

TEST_F(AgentStateCoordinatorTest, ForgettingSparesASessionThatComesBackMeanwhile) {
  hook("a", claude, working);
  hook("b", claude, working);
  table_.syncProcessSessions({match(aider, 5, true)});
  clock_->advance(100'000);
  table_.sweepStaleSessions(clock_->now());
  listener_->onCall = [&] {
    listener_->onCall = nullptr;
    hook("b", claude, working, clock_->now());
  };
  table_.removeSessionsStaleFor(86'400, clock_->now());
  EXPECT_EQ(states(), "b=working proc-aider-5=stale") << "a scan decides on what it found";
}

}  // namespace
}  // namespace kestrel
