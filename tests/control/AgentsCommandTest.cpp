#include <fstream>
#include <gmock/gmock.h>

#include "KestrelControl/AgentsCommand.h"
#include "KestrelCore/Support/ChildProcess.h"
#include "KestrelCore/Support/Json.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

/// The real kestrelctl on a machine that has Claude Code, Codex and a folder of Cursor.
class AgentsCommand : public testing::Test {
 protected:
  AgentsCommand() {
    fs::create_directories(home_ / ".cursor");
    fs::create_directories(home_ / ".codex");
    std::ofstream(home_ / ".codex/hooks.json") << R"({"hooks":{"Stop":"kestrel-relay"}})";
    std::ofstream(home_ / "claude") << "#!/bin/sh\nprintf '1.0\\n\\033[2J'\n";
    fs::permissions(home_ / "claude", fs::perms::owner_all);
    fs::copy(home_ / "claude", home_ / "codex");
  }

  /// Its exit status, unless that is 0, and its output of both kinds.
  [[nodiscard]] std::string run(const std::string& words, const fs::path& program = KESTRELCTL) const {
    const std::string home = home_.native();
    const auto result = runChildProcess(
        {"/bin/sh", "-c", "exec 2>&1; exec env -i HOME=" + home + " PATH=" + home + " \"$0\" " + words,
         program.native()});
    return (result->status == 0 ? "" : std::to_string(result->status) + ": ") + result->output;
  }

  TemporaryDirectories folders_;
  const fs::path home_ = folders_.directories().home;
};

TEST_F(AgentsCommand, ListsTheAgentsWithoutKestrel) {
  EXPECT_EQ(run("agents"),
            "Claude Code    Installed (Hooks not configured)   1.0??[2J\n"
            "               kestrelctl setup claude\n"
            "Codex CLI      Hook active                        1.0??[2J\n"
            "Gemini CLI     Not installed\n"
            "OpenCode       Not installed\n"
            "Antigravity    Not installed\n"
            "Cursor         Detected\n"
            "Windsurf       Not installed\n"
            "Aider          Not installed\n");
  EXPECT_THAT(dumpJson(parseJson(run("agents --json"))),
              HasSubstr(R"({"agentType":"cursor","displayName":"Cursor","integrationType":"process",)"
                        R"("isInstalled":true,"isIntegrationActive":false,"statusMessage":"Detected"})"));
}

TEST_F(AgentsCommand, SeesInKestrelsSessionsWhatRuns) {
  const Json answer = {{"sessions", {1, {{"agentType", "x"}}, {{"agentType", "windsurf"}}}}};
  testing::internal::CaptureStdout();
  EXPECT_EQ(runAgentsCommand({}, folders_.directories(), [&] { return Json(answer); }), kControlDone);
  EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("Windsurf       Running (Process signal)\n"));
}

TEST_F(AgentsCommand, ShowsSetUpsWithTheRelayBesideIt) {
  const std::string relay = fs::canonical(KESTRELCTL).parent_path() / "kestrel-relay";
  const std::string verified = run("setup codex");
  EXPECT_THAT(verified, StartsWith("Codex CLI with hooks, as in 0.169 - ~/.codex/hooks.json\n\n1. Open"));
  EXPECT_THAT(verified, HasSubstr("notify = [\"" + relay +
                                  "\", \"--agent\", \"codex\", \"--state\", \"auto\"]\n\nTo undo"));
  EXPECT_THAT(
      run("setup codex --classic"),
      testing::EndsWith("notify = [\"" + relay + "\", \"--agent\", \"codex\", \"--state\", \"working\"]\n"));
  EXPECT_EQ(parseJson(run("setup claude --json"))["relayPath"], relay);
  EXPECT_THAT(run("setup custom"), StartsWith("2: "));

  // Through a link, and where there is no relay.
  fs::create_symlink(KESTRELCTL, home_ / "ctl");
  EXPECT_EQ(run("setup codex", "ctl"), verified);
  const fs::path alone = home_ / "kestrelctl";
  fs::copy(KESTRELCTL, alone);
  EXPECT_THAT(run("setup claude", alone), StartsWith("1: kestrelctl: there is no kestrel-relay"));
  EXPECT_THAT(run("setup aider", alone), StartsWith("Aider is monitored automatically"));
}

}  // namespace
}  // namespace kestrel
