#include <chrono>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <tuple>
#include <unistd.h>

#include "tests/relay/HookListener.h"

#include "KestrelCore/Agents/Adapters/AgentRegistry.h"
#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

// The real executable, called by a shell as agents call their hooks.

namespace kestrel {
namespace {

namespace fs = std::filesystem;
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

/// What the adapters' set-ups put into agents' files, run as the agents run it, with their recorded inputs.
class RelaySetUpTest : public RelayProcessTest {
 protected:
  RelaySetUpTest() {
    fs::create_directory(relay_.parent_path());
    fs::create_symlink(KESTREL_RELAY_PATH, relay_);
  }

  static std::vector<AgentSetup> setUps(AgentType agent, const fs::path& relay) {
    AgentRegistry registry({});
    registry.registerDefaultAdapters();
    return registry.adapter(agent)->verifiedSetups(relay.native());
  }

  /// Starts what is configured for an event, or for "Notification:" and its subject, if anything is.
  static void fire(const AgentSetup& setUp, const std::string& event) {
    const std::string name = event.substr(0, event.find(':'));
    const Json hooks = parseJson(setUp.what)["hooks"];
    if (!hooks.contains(name)) return;
    const std::string input =
        R"({"session_id":"s-1","cwd":"/home/u/p","tool_input":{"hook_event_name":"Stop"},"hook_event_name":")" +
        name + R"(","notification_type":")" + event.substr(event.find(':') + 1) +
        "\",\"prompt\":\"'$`\xFF\"}";
    setenv("INPUT", input.c_str(), 1);
    setenv("HOOK", hooks[name][0]["hooks"][0]["command"].get<std::string>().c_str(), 1);
    expectSilentSuccess(R"(printf %s "$INPUT" 2>/dev/null | /bin/sh -c "$HOOK")");
  }

  /// The reported states, which are all of one session.
  static std::string statesOf(const std::vector<HookEvent>& events, AgentType agent) {
    std::string states;
    for (const auto& event : events) {
      EXPECT_EQ(std::tuple(event.agent, event.sessionId, event.cwd), std::tuple(agent, "s-1", "/home/u/p"));
      states += std::string(rawValue(event.state)) + " ";
    }
    return states;
  }

  /// A path that has to be quoted for the shell, for JSON and for JavaScript.
  const fs::path relay_ = home_ / "it's \"$k\" \\" / "kestrel-relay";
};

TEST_F(RelaySetUpTest, HooksReportTheAgentsTurns) {
  const std::tuple<AgentType, const char*, const char*> turns[] = {
      {AgentType::claude,
       "SessionStart UserPromptSubmit PreToolUse PermissionRequest Notification:permission_prompt "
       "PostToolUse "
       "PostToolBatch SubagentStop Stop Notification:idle_prompt SessionEnd",
       "idle working working waiting waiting working idle idle completed "},
      {AgentType::claude, "UserPromptSubmit StopFailure", "working idle "},
      {AgentType::codex, "SessionStart UserPromptSubmit PreToolUse PermissionRequest PostToolUse Stop",
       "idle working working waiting working idle "},
      {AgentType::codex, "UserPromptSubmit Interrupt SessionEnd", "working idle completed "},
      {AgentType::gemini,
       "SessionStart BeforeAgent BeforeTool Notification:ToolPermission AfterTool AfterAgent SessionEnd",
       "idle working working waiting working idle completed "}};
  for (const auto& [agent, events, states] : turns) {
    HookListener listener(socket_);
    std::istringstream names(events);
    for (std::string event; names >> event;) fire(setUps(agent, relay_)[0], event);
    EXPECT_EQ(statesOf(listener.finish(), agent), states);
  }
}

TEST_F(RelaySetUpTest, CodexNotifiesOfTheEndOfATurn) {
  HookListener listener(socket_);
  const std::string line = setUps(AgentType::codex, relay_)[1].what;
  auto words = parseJson(line.substr(line.find('['))).get<std::vector<std::string>>();
  words.emplace_back(R"({"type":"agent-turn-complete","thread-id":"s-1","turn-id":"t","cwd":"/home/u/p"})");
  EXPECT_EQ(runChildProcess(words)->status, 0);
  EXPECT_EQ(statesOf(listener.finish(), AgentType::codex), "idle ");
}

TEST_F(RelaySetUpTest, GeminiIsNeverRefusedAnything) {
  // The second prints an error and ends with status 2.
  for (const char* relay : {"/missing", "/bin/ls"}) fire(setUps(AgentType::gemini, relay)[0], "BeforeAgent");
}

TEST_F(RelaySetUpTest, OpenCodeReportsInOrder) {
  if (run("node --version").status != 0) GTEST_SKIP() << "there is no node";
  HookListener listener(socket_);
  // A relay that is slow with "busy", so that a call that does not wait for it would overtake it.
  const fs::path slow = relay_.parent_path() / "slow";
  std::ofstream(slow) << "#!/bin/sh\ncase \"$*\" in *busy*) sleep 0.1;; esac\nexec \"$RELAY\" \"$@\"\n";
  fs::permissions(slow, fs::perms::owner_all);
  std::ofstream(home_ / "kestrel.mjs") << setUps(AgentType::opencode, slow)[0].what;
  std::ofstream(home_ / "missing.mjs") << setUps(AgentType::opencode, home_ / "missing")[0].what;
  std::ofstream(home_ / "host.mjs") << R"(
    for (const file of ["missing", "kestrel"]) {
      const { event } = await (await import(`./${file}.mjs`)).KestrelPlugin({ directory: "/home/u/p" });
      const tell = (type, status) => event({ event: { type, properties: { sessionID: "s-1", status: { type: status } } } });
      for (const status of ["busy", "busy", "retry", "idle", "busy"]) tell("session.status", status);
      tell("session.idle");
      await tell("session.status", "idle");
    })";
  const Outcome outcome = run("node \"$HOME/host.mjs\"");
  EXPECT_EQ(std::to_string(outcome.status) + outcome.output, "0");
  EXPECT_EQ(statesOf(listener.finish(), AgentType::opencode), "working working idle working idle ");
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
