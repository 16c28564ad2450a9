#include <gmock/gmock.h>

#include "KestrelControl/ControlOptions.h"

namespace kestrel {
namespace {

using Words = std::vector<std::string>;

ControlOptions parse(const Words& words) {
  std::vector<const char*> arguments{"kestrelctl"};
  for (const auto& word : words) arguments.push_back(word.c_str());
  return ControlOptions::parse(static_cast<int>(arguments.size()), arguments.data());
}

TEST(ControlOptions, BecomeOneRequest) {
  struct Case {
    Words words;
    std::string command;
    Words arguments;
    bool json = false;
  };
  const Case cases[] = {
      {{"status"}, "status", {}},
      {{"pause", "1h30m"}, "pause", {"1h30m"}},
      {{"pause", "--json", "5"}, "pause", {"5"}, true},
      {{"settings", "list", "--json"}, "settings", {"list"}, true},
      {{"settings", "set", "batteryFloorPercent", "-5"}, "settings", {"set", "batteryFloorPercent", "-5"}},
  };
  for (const auto& expected : cases) {
    const auto options = parse(expected.words);
    EXPECT_EQ(options.exitStatus, std::nullopt) << testing::PrintToString(expected.words);
    EXPECT_EQ(options.request.command, expected.command);
    EXPECT_EQ(options.request.arguments, expected.arguments);
    EXPECT_EQ(options.json, expected.json);
  }
}

TEST(ControlOptions, WrongWordsAreUsage) {
  for (const Words& words :
       {Words{}, Words{"nothing"}, Words{"--unknown"}, Words{"status", "more"}, Words{"status", "--jsn"},
        Words{"pause"}, Words{"pause", "soon"}, Words{"pause", "-5"}, Words{"pause", "5", "6"}, Words{"hold"},
        Words{"hold", "maybe"}, Words{"settings"}, Words{"settings", "get"},
        Words{"settings", "set", "onlyOnAC"}, Words{"settings", "list", "onlyOnAC"}, Words{"run"},
        Words{"run", "--"}, Words{"sessions", "--watch"}}) {
    testing::internal::CaptureStderr();
    const auto status = parse(words).exitStatus;
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(status, kControlUsage) << testing::PrintToString(words);
  }
}

}  // namespace
}  // namespace kestrel
