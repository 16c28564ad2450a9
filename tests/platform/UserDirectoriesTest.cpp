#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KestrelCore/Platform/Directories.h"

namespace kestrel {
namespace {

using Environment = std::map<std::string, std::string>;

class UserDirectoriesTest : public testing::Test {
 protected:
  /// With exactly the given ones of the variables that count.
  static std::optional<Directories> directoriesWith(const Environment& environment) {
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CONFIG_HOME", "TMPDIR"}) {
      ::unsetenv(name);
    }
    for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
    return userDirectories();
  }
  void TearDown() override { (void)directoriesWith({{"HOME", home_}}); }

 private:
  const std::string home_ = ::getenv("HOME");
};

TEST_F(UserDirectoriesTest, FollowAbsolutePathsInTheEnvironmentOnly) {
  const Environment standard{{"HOME", "/home/u//"},
                             {"XDG_DATA_HOME", ""},
                             {"XDG_CONFIG_HOME", "c"},
                             {"TMPDIR", "."},
                             {"XDG_STATE_HOME", "~/s"}};
  const Environment elsewhere{{"HOME", "/home/u"},
                              {"XDG_DATA_HOME", "/d/"},
                              {"XDG_CONFIG_HOME", "/c"},
                              {"XDG_STATE_HOME", "/s"},
                              {"TMPDIR", "/var/tmp/"}};
  using Words = std::vector<std::string>;
  const std::pair<Environment, Words> cases[] = {
      {standard,
       {"/home/u/.local/share/Kestrel/run/kestrel.sock", "/home/u/.config/com.kestrel.app.json",
        "/home/u/.local/state", "/tmp"}},
      {elsewhere,
       {"/d/Kestrel/run/kestrel.sock", "/c/com.kestrel.app.json", "/s", "/var/tmp", "/home/u/.local/share"}},
  };
  for (const auto& [environment, expected] : cases) {
    const Directories found = directoriesWith(environment).value();
    Words words{found.hookSocket(), found.settingsFile(), found.logs, found.temporary};
    for (const auto& path : alternativeApplicationSupport(found)) words.push_back(path);
    EXPECT_EQ(words, expected);
  }
  EXPECT_FALSE(directoriesWith({{"XDG_DATA_HOME", "/d"}}).has_value());
  EXPECT_FALSE(directoriesWith({{"HOME", "home/u"}, {"XDG_DATA_HOME", "/d"}}).has_value());
}

}  // namespace
}  // namespace kestrel
