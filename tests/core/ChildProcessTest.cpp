#include <chrono>
#include <gtest/gtest.h>
#include <string>

#include "KestrelCore/Support/ChildProcess.h"

namespace kestrel {
namespace {

std::optional<ChildProcessResult> shell(const std::string& script,
                                        const ChildProcessLimits& limits = {.timeoutSeconds = 30}) {
  return runChildProcess({"/bin/sh", "-c", script}, limits);
}

TEST(ChildProcess, GivesOutputAndStatus) {
  const struct {
    const char* script;
    int status;
    std::string output;
  } rows[] = {
      {"printf 'a\\000b\\n'", 0, std::string("a\0b\n", 4)},
      {"exit 3", 3, ""},
      {"kill -TERM $$", 143, ""},
      {"read line || echo end of input", 0, "end of input\n"},
  };
  for (const auto& row : rows) {
    const auto result = shell(row.script);
    ASSERT_TRUE(result) << row.script;
    EXPECT_EQ(result->status, row.status) << row.script;
    EXPECT_EQ(result->output, row.output) << row.script;
  }
  // No shell looks at the arguments.
  EXPECT_EQ(runChildProcess({"/bin/echo", "$HOME;", "*"})->output, "$HOME; *\n");
  EXPECT_FALSE(runChildProcess({"/no/such/program"}));
}

TEST(ChildProcess, CutsTheOutputAtTheLimit) {
  const auto cut =
      shell("while :; do echo 0123456789; done", {.timeoutSeconds = 30, .maximumOutputBytes = 1000});
  ASSERT_TRUE(cut);
  EXPECT_TRUE(cut->outputWasCut);
  EXPECT_EQ(cut->output.size(), 1000U);
}

TEST(ChildProcess, IsKilledWhenItsTimeIsOver) {
  for (const char* script :
       {"sleep 60", "while :; do :; done", "echo early; exec sleep 60", "exec >/dev/null; exec sleep 60",
        "trap '' TERM INT HUP; exec >&-; exec sleep 60"}) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(shell(script, {.timeoutSeconds = 0.2})) << script;
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_GT(took.count(), 0.15);
    EXPECT_LT(took.count(), 10) << script;
  }
}

}  // namespace
}  // namespace kestrel
