#include <gtest/gtest.h>

#include "KestrelRelay/RelayOptions.h"

namespace kestrel {
namespace {

RelayOptions parsed(std::vector<const char*> words) {
  words.insert(words.begin(), "kestrel-relay");
  return RelayOptions::parse(static_cast<int>(words.size()), words.data());
}

TEST(RelayOptionsTest, TakesOnlyTheLastArgumentAsJson) {
  EXPECT_EQ(parsed({"--agent", "codex", "--state", "auto", "{\"a\":1}"}).jsonArgument, "{\"a\":1}");
  EXPECT_EQ(parsed({"{\"a\":1}", "--agent", "codex"}).jsonArgument, std::nullopt);
  // An option that lacks its value must not swallow the event.
  const RelayOptions cut = parsed({"--agent", "codex", "--state", "idle", "--session-id", " {\"a\":1}"});
  EXPECT_EQ(cut.jsonArgument, " {\"a\":1}");
  EXPECT_EQ(cut.sessionId, std::nullopt);
}

TEST(RelayOptionsTest, OverlooksAndNamesWhatItDoesNotUnderstand) {
  const std::vector<std::vector<const char*>> lines{
      {"--agent", "claude", "--state", "idle", "--colour", "blue"},
      {"stray", "--agent", "claude", "--state", "idle"},
      {"--agent", "claude", "--state", "idle", "--pid", "12x"},
      {"--agent", "claude", "--state", "idle", "--pid", "99999999999"},
      {"--agent", "claude", "--state", "idle", "--model"},
      {"--state", "idle", "--agent", "claude", "--session-id", "", "--strict=yes"},
  };
  for (const auto& line : lines) {
    const RelayOptions options = parsed(line);
    EXPECT_EQ(options.agent, "claude") << line.back();
    EXPECT_EQ(options.state, "idle") << line.back();
    EXPECT_EQ(options.pid, std::nullopt) << line.back();
    EXPECT_EQ(options.problems.size(), line[4] == std::string_view("--colour") ? 2U : 1U) << line.back();
  }
  EXPECT_EQ(parsed({"--agent", "claude", "--state", "wroking"}).problems.size(), 1U);
  EXPECT_EQ(parsed({}).problems.size(), 2U);
}

}  // namespace
}  // namespace kestrel
