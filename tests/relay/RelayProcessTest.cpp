#include <chrono>
#include <cstdlib>
#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/relay/HookListener.h"

#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

// The real executable, called by a shell as agents call their hooks.

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kSessionJson =
    R"({"session_id":"s-1","cwd":"/home/u/p","hook_event_name":"PreToolUse"})";

struct Outcome {
  int status = -1;
  std::string output;
  double seconds = 0;
};

class RelayProcessTest : public testing::Test {
 protected:
  RelayProcessTest() {
    setenv("HOME", home_.c_str(), 1);
    setenv("RELAY", KESTREL_RELAY_PATH, 1);
    setenv("JSON", kSessionJson, 1);
    unsetenv("XDG_DATA_HOME");
    socket_ = userDirectories().value_or(Directories()).hookSocket();
  }

  /// Runs a shell script; what any of its programs prints is the output.
  static Outcome run(const std::string& script) {
    const auto start = std::chrono::steady_clock::now();
    const auto result = runChildProcess({"/bin/sh", "-c", "exec 2>&1\n" + script});
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return result ? Outcome{result->status, result->output, passed.count()} : Outcome{};
  }

  static void expectSilentSuccess(const std::string& script) {
    SCOPED_TRACE(script);
    const Outcome outcome = run(script);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    // Far above the real bound, for a machine that has other things to do.
    EXPECT_LT(outcome.seconds, 2);
  }

  TemporaryDirectories temporary_;
  const fs::path home_ = temporary_.directories().home;
  fs::path socket_;
};

TEST_F(RelayProcessTest, UnderstandsEveryWayInWhichHooksAreCalled) {
  const std::string relay = R"("$RELAY" --agent claude --state working )";
  const std::string fifo = R"(mkfifo "$HOME/f"; exec 3<>"$HOME/f"; rm "$HOME/f"; )";
  struct Case {
    std::string script;
    bool isIdentified;
  };
  const std::vector<Case> cases{
      {R"(printf %s "$JSON" | )" + relay, true},
      {R"(printf %s "$JSON" | sh -c 'sh -c "\"$RELAY\" --agent claude --state working; exit \$?"; exit $?')",
       true},
      {relay + R"("$JSON" </dev/null)", true},
      {relay + R"("$JSON" <&-)", true},
      {relay + R"(--colour blue --session-id s-1 --cwd /home/u/p <&-)", true},
      {R"(echo '{"session_id":"no","cwd":"/no"}' | )" + relay + "--session-id s-1 --cwd /home/u/p", true},
      {fifo + R"(printf %s "$JSON" >&3; )" + relay + "<&3", true},
      {R"({ printf '{"a":"'; head -c 3000000 /dev/zero | tr '\0' x; printf '",%s' "${JSON#?}" && : >"$HOME/all"; } | )" +
           relay,
       true},
      {relay + "</dev/null", false},
      {relay + "<&- >&- 2>&-", false},
      {": | " + relay, false},
      {fifo + relay + "<&3", false},
      {R"(head -c 300000 /dev/zero | )" + relay, false},
      {relay + "</", false},
  };
  for (const Case& c : cases) {
    HookListener listener(socket_);
    expectSilentSuccess(c.script);
    const auto events = listener.finish();
    ASSERT_EQ(events.size(), 1U) << c.script;
    // The shells are skipped: the hook's agent is this test.
    EXPECT_EQ(events[0].pid, getpid()) << c.script;
    EXPECT_EQ(events[0].sessionId, c.isIdentified ? "s-1" : "claude-" + std::to_string(getpid())) << c.script;
    EXPECT_EQ(events[0].cwd, c.isIdentified ? "/home/u/p" : fs::current_path().native()) << c.script;
  }
  EXPECT_TRUE(fs::exists(home_ / "all"));  // The writer of much input could finish.
}

TEST_F(RelayProcessTest, OneSessionOfAnAgentStaysOneSession) {
  HookListener listener(socket_);
  for (const std::string event :
       {"SessionStart", "PreToolUse", "PermissionRequest", "SubagentStop", "Stop"}) {
    expectSilentSuccess(R"(printf '{"session_id":"s-1","hook_event_name":"%s","x":"\377"}' )" + event +
                        R"( | "$RELAY" --agent claude --state auto)");
  }
  std::vector<AgentState> states;
  for (const HookEvent& event : listener.finish()) {
    states.push_back(event.state);
    EXPECT_EQ(event.sessionId, "s-1");
  }
  EXPECT_THAT(states,
              ElementsAre(AgentState::idle, AgentState::working, AgentState::waiting, AgentState::idle));
}

TEST_F(RelayProcessTest, FailsSilentlyUnlessAskedToBeStrict) {
  const std::string relay = R"("$RELAY" --agent claude --state working </dev/null)";
  const std::string strict = R"("$RELAY" --agent claude --state working --strict </dev/null)";
  const auto expectFailure = [&](const std::string& setUp, const std::string& reason) {
    expectSilentSuccess(setUp + relay);
    const Outcome outcome = run(setUp + strict);
    EXPECT_EQ(outcome.status, 1) << setUp;
    EXPECT_THAT(outcome.output, HasSubstr(reason)) << setUp;
    EXPECT_LT(outcome.seconds, 2) << setUp;
  };
  expectFailure("", "No such file");
  expectFailure("unset HOME; ", "home directory");
  expectFailure("HOME=/" + std::string(200, 'x') + "; ", "too long");
  { HookListener stale(socket_); }
  expectFailure("", "refused");
  const HookListener mute(socket_, "");
  expectFailure("", "no answer");
  const HookListener refusing(socket_, "{\"ok\":false,\"error\":\"a \"quoted\" reason\"}\n");
  expectFailure("", "a \"quoted\" reason");
}

TEST_F(RelayProcessTest, ReportsWrongUseOnlyWhenStrict) {
  expectSilentSuccess(R"("$RELAY" --nonsense </dev/null)");
  const Outcome strict = run(R"("$RELAY" --strict --agent claude --state wroking </dev/null)");
  EXPECT_EQ(strict.status, 2);
  EXPECT_THAT(strict.output, HasSubstr("wroking"));
}

TEST_F(RelayProcessTest, LooksWhereKestrelListensWithAnotherEnvironment) {
  HookListener listener(socket_);
  setenv("XDG_DATA_HOME", (home_ / "elsewhere").c_str(), 1);
  if (alternativeApplicationSupport(userDirectories().value_or(Directories())).empty())
    GTEST_SKIP() << "one place only on this system";
  expectSilentSuccess(R"("$RELAY" --agent claude --state working </dev/null)");
  EXPECT_EQ(listener.finish().size(), 1U);
}

}  // namespace
}  // namespace kestrel
