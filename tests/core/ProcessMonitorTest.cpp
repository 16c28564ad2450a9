#include <fcntl.h>
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Agents/ProcessMonitor.h"
#include "KestrelPlatform/Simulated/SimulatedProcessList.h"
#include "KestrelPlatform/Simulated/SimulatedRunningApplications.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr std::int32_t kOwnPid = 777;
constexpr const char* kSnapshot = "/bin/bash -c source /home/u/.claude/shell-snapshots/s.sh && ls";

class ProcessMonitorTest : public testing::Test {
 protected:
  /// One line for each match: "agent pid working|idle (command)".
  std::vector<std::string> scan() {
    std::vector<std::string> lines;
    for (const auto& match : monitor_.scanProcesses()) {
      lines.push_back(std::string(rawValue(match.agent)) + " " + std::to_string(match.pid) +
                      (match.isWorking ? " working (" : " idle (") + match.command + ")");
    }
    return lines;
  }

  void writeAged(const fs::path& file, double age) const {
    const fs::path path = world_.directories().home / file;
    if (!fs::exists(path)) writeFixture(path, "{}\n");
    const auto written = static_cast<time_t>((world_.clock->now() - age).secondsSince1970());
    const timespec times[] = {{written, 0}, {written, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
  }

  TestWorld world_;
  SimulatedProcessList processes_;
  SimulatedRunningApplications applications_;
  ProcessMonitor monitor_{processes_, applications_, AgentFootprints(world_.directories().home), kOwnPid,
                          world_.clock};
};

TEST_F(ProcessMonitorTest, ReportsAntigravityThenEditorsThenCommandLines) {
  applications_.set({{"Finder", "com.apple.finder", 10},
                     {"Windsurf - Next", std::nullopt, 11},
                     {"Editor", "com.example.CURSOR.Windsurf", 13},
                     {"Antigravity", "com.google.antigravity", 15},
                     {"Cursor Antigravity", "x", 17}});
  processes_.set({{{20, 1, "/opt/bin/codex"}, {21, 1, "vim"}, {kOwnPid, 1, "codex exec"}, {22, 1, "aider"}}});
  EXPECT_THAT(scan(),
              ElementsAre("antigravity 15 idle (Antigravity IDE (Idle))", "windsurf 11 idle (Windsurf IDE)",
                          "cursor 13 idle (Cursor IDE)", "cursor 17 idle (Cursor IDE)",
                          "codex 20 working (/opt/bin/codex)", "aider 22 working (aider)"));
}

TEST_F(ProcessMonitorTest, AntigravityWorksWhileATranscriptIsFresh) {
  applications_.set({{std::nullopt, "com.google.Antigravity", 15}});
  const auto expectState = [this](const std::string& state) {
    EXPECT_THAT(scan(), ElementsAre("antigravity 15 " + state));
  };
  const fs::path sessions = ".gemini/antigravity/brain";
  const fs::path transcript = sessions / "s1/.system_generated/logs/transcript.jsonl";
  expectState("idle (Antigravity IDE (Idle))");
  writeAged(transcript, 29);
  expectState("working (Antigravity Agent (Active))");
  writeAged(transcript, 30);
  expectState("idle (Antigravity IDE (Waiting))");
  writeAged(transcript, 180);
  expectState("idle (Antigravity IDE (Idle))");
}

TEST_F(ProcessMonitorTest, ABareClaudeWorksWhileItsShellToolRuns) {
  processes_.set({{{20, 1, "claude"}, {21, 1, "claude"}, {30, 21, kSnapshot}, {31, 30, "sleep 5"}}});
  EXPECT_THAT(scan(), ElementsAre("claude 20 idle (claude)", "claude 21 working (claude)"));
  // ps tells no parents.
  processes_.set({{{20, std::nullopt, "claude"}, {30, std::nullopt, kSnapshot}}});
  EXPECT_THAT(scan(), ElementsAre("claude 20 working (claude)"));
}

TEST_F(ProcessMonitorTest, ABareClaudeWorksForTwoMinutesAfterATranscriptChanged) {
  processes_.set({{{20, 1, "claude"}}});
  const auto expectState = [this](const std::string& state) {
    EXPECT_THAT(scan(), ElementsAre("claude 20 " + state + " (claude)"));
  };
  const fs::path project = ".claude/projects/-home-u-p";
  writeAged(project / "a.jsonl", 120);
  writeAged(project / "b/subagents/agent-1.jsonl", 500);
  writeAged(project / "notes.txt", 0);
  writeAged(project / "future.jsonl", -3600);
  expectState("working");
  world_.clock->advance(1);
  expectState("idle");
  writeAged(project / "b/subagents/agent-1.jsonl", 0);
  expectState("working");
  world_.clock->advance(-1000);  // the clock was set back: nothing is fresh that was written since
  expectState("idle");
}

}  // namespace
}  // namespace kestrel
