#include <gtest/gtest.h>
#include <string>

#include "KestrelCore/Agents/ProcessMatching.h"

namespace kestrel {
namespace {

constexpr auto kWorking = true;
constexpr auto kIdle = false;

TEST(ProcessMatching, RecognisesEachFamilyInTheirOrderAndWhetherItWorks) {
  const struct {
    std::string commandLine;
    AgentType agent;
    bool isWorking;
  } rows[] = {
      {"/opt/homebrew/bin/codex", AgentType::codex, kWorking},
      {"codex", AgentType::codex, kIdle},
      {"node /x/codex --resume", AgentType::codex, kIdle},
      {"codex exec fix the build", AgentType::codex, kWorking},
      {"opencode", AgentType::opencode, kIdle},
      {"opencode run fix", AgentType::opencode, kWorking},
      {"opencode serve --port 4096", AgentType::opencode, kIdle},
      {"node /x/opencode serve run", AgentType::opencode, kIdle},
      {"claude", AgentType::claude, kIdle},
      {"claude -p hello", AgentType::claude, kWorking},
      {"node /x/claude-code/cli.js", AgentType::claude, kWorking},
      {"/usr/bin/gemini", AgentType::gemini, kWorking},
      {"python -m aider", AgentType::aider, kWorking},
      {"codex Kestrel", AgentType::codex, kIdle},
      {"codex opencode /claude /gemini aider", AgentType::codex, kIdle},
      {"x opencode /claude /gemini aider", AgentType::opencode, kWorking},
      {"x/claude /gemini aider", AgentType::claude, kWorking},
      {"x/gemini aider", AgentType::gemini, kWorking},
  };
  for (const auto& row : rows) {
    const auto match = matchCommandLine({4242, std::nullopt, row.commandLine});
    ASSERT_TRUE(match) << row.commandLine;
    EXPECT_EQ(match->agent, row.agent) << row.commandLine;
    EXPECT_EQ(match->isWorking, row.isWorking) << row.commandLine;
    EXPECT_EQ(match->name, displayName(row.agent));
    EXPECT_TRUE(match->isRunning && match->pid == 4242);
  }
}

TEST(ProcessMatching, LeavesOutEverythingElseAndWhatAnyFamilyExcludes) {
  for (const char* command :
       {"", "claudette", "my-claude", "npx claude", "gemini", "geminid", "Claude ", "CODEX", "Aide",
        "vi code.txt", "/home/u/.claude/shell-snapshots/snapshot-bash-1.sh"}) {
    EXPECT_FALSE(matchCommandLine({4242, std::nullopt, command})) << command;
  }
  for (const char* command : {"/Applications/ChatGPT.app/Contents/Resources/codex exec",
                              "codex app-server --listen unix:///tmp/x",
                              "Codex (Service) codex",
                              "Codex (Renderer) codex",
                              "Codex (GPU) codex",
                              "/x/codex SkyComputerUse",
                              "codex-code-mode-host exec",
                              "codex ChatGPT for Chrome",
                              "/x/plugins/openai-bundled/codex",
                              "/usr/local/bin/codex app-server with /usr/local/bin/claude and aider",
                              "claude --version",
                              "claude auth login",
                              "npm install /x/claude",
                              "claude install with aider",
                              "gemini --antigravity-mode",
                              "/x/antigravity/gemini and aider",
                              "grep codex",
                              "rg-grep claude -r",
                              "ps -axo pid,command codex",
                              "/usr/bin/kestrel-relay --agent codex"}) {
    EXPECT_FALSE(matchCommandLine({4242, std::nullopt, command})) << command;
  }
}

}  // namespace
}  // namespace kestrel
