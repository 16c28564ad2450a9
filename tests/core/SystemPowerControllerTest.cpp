#include <gmock/gmock.h>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Power/DefaultSystemPowerController.h"
#include "KestrelCore/Support/AtomicFile.h"

namespace kestrel {
namespace {

class SystemPowerControllerTest : public testing::Test {
 protected:
  /// Writes the tool anew; its arguments are in the file "said" beside it.
  DefaultSystemPowerController controller(const std::string& script) {
    writeFixture(tool_, "#!/bin/sh\necho \"$@\" >\"$0.said\"\n" + script);
    std::filesystem::permissions(tool_, std::filesystem::perms::owner_all);
    return DefaultSystemPowerController(world_.sink, tool_);
  }
  [[nodiscard]] std::string said() const { return readWholeFile(tool_.string() + ".said", 100).value_or(""); }

  const TestWorld world_;
  const std::filesystem::path tool_ = world_.folders.root() / "pmset";
};

TEST_F(SystemPowerControllerTest, ReadsTheSetting) {
  const std::pair<std::string, bool> rows[] = {
      {"printf 'AC Power:\\n disablesleep 0\\nBattery Power:\\n disablesleep\\t 1\\r\\n'", true},
      {"echo disablesleep 0", false},
      {"printf 'disablesleep\\n1\\n'", false},
      {"printf 'disablesleep 10\\nnodisablesleep 1\\n'", false},
      {"exec sleep 60", false},
      {"while :; do echo disablesleep 1; done", false},
  };
  for (const auto& [script, expected] : rows) EXPECT_EQ(controller(script).readSleepDisabled(), expected);
  EXPECT_EQ(said(), "-g custom\n");
}

TEST_F(SystemPowerControllerTest, SetsAndTellsTheLog) {
  controller("").writeSleepDisabled(true);
  EXPECT_EQ(said(), "-a disablesleep 1\n");
  controller("exit 3").writeSleepDisabled(false);
  EXPECT_EQ(said(), "-a disablesleep 0\n");
  controller("exec sleep 60").writeSleepDisabled(true);
  DefaultSystemPowerController(world_.sink, "/no/such/tool").writeSleepDisabled(true);
  EXPECT_THAT(world_.sink->lines("lease"),
              testing::ElementsAre("Executed pmset -a disablesleep 1",
                                   "Failed to execute pmset -a disablesleep 0, status: 3",
                                   "Failed to execute pmset -a disablesleep 1, status: -1",
                                   "Failed to execute pmset -a disablesleep 1, status: -1"));
}

}  // namespace
}  // namespace kestrel
