#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <vector>

#include "KestrelPlatform/Linux/LinuxRunningApplications.h"
#include "KestrelPlatform/Simulated/ManualClock.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class LinuxRunningApplicationsTest : public testing::Test {
 protected:
  void putEntry(const std::string& file, const std::string& text) const {
    fs::create_directories((folders_.root() / file).parent_path());
    std::ofstream(folders_.root() / file) << text;
  }
  static std::string entryOf(const std::string& name, const std::string& command) {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + command + "\n";
  }
  /// "pid name id" of each application.
  std::vector<std::string> list(const std::vector<ProcessRow>& processes) {
    std::vector<std::string> lines;
    for (const auto& each : applications_->list(processes)) {
      lines.push_back(std::to_string(each.pid) + " " + each.localizedName.value_or("-") + " " +
                      each.bundleIdentifier.value_or("-"));
    }
    return lines;
  }

  TemporaryDirectories folders_;
  const std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>();
  const std::unique_ptr<RunningApplications> applications_ = makeLinuxRunningApplications(
      {folders_.root() / "own", folders_.root() / "missing", folders_.root() / "shared"}, clock_);
};

TEST_F(LinuxRunningApplicationsTest, AreTheMainProcessesOfKnownEditors) {
  EXPECT_THAT(
      list({{10, 1, "/usr/share/cursor/cursor"},
            {12, 11, "/proc/self/exe --type=renderer /usr/share/cursor/cursor"},
            {13, 10, "/usr/share/cursor/chrome_crashpad_handler --monitor-self"},
            {14, 10, "/usr/share/cursor/cursor /x/resources/app/serverWorker"},
            {16, 1, "/usr/share/cursor/cursor /usr/share/cursor/resources/app/out/cli.js ."},
            {17, 1, "/home/u/.local/bin/cursor-agent"},
            {20, 1, "/tmp/.mount_Cursorx/usr/share/cursor/Cursor --no-sandbox /home/u/p"},
            {21, std::nullopt, "windsurf"},
            {22, 1, "/usr/share/windsurf-next/windsurf-next --ozone-platform=wayland"},
            {23, 1, "/app/antigravity/antigravity"}}),
      ElementsAre("10 Cursor -", "20 Cursor -", "21 Windsurf -", "22 Windsurf -", "23 Antigravity -"));
}

TEST_F(LinuxRunningApplicationsTest, AreNamedByTheirDesktopEntries) {
  putEntry("shared/cursor.desktop", entryOf("Overridden", "cursor"));
  putEntry("own/cursor.desktop", entryOf("Cursor Nightly", "\"/opt/my apps/Cursor\" %U"));
  putEntry("shared/vendor/windsurf.desktop", entryOf("My editor", "env A=1 /usr/bin/windsurf --x"));
  putEntry("shared/antigravity-url.desktop", entryOf("Antigravity URL", "antigravity") + "NoDisplay=true\n");
  const std::vector<ProcessRow> processes{{10, 1, "cursor"}, {11, 1, "windsurf"}, {12, 1, "antigravity"}};
  EXPECT_THAT(list(processes),
              ElementsAre("10 Cursor Nightly cursor", "11 Windsurf vendor-windsurf", "12 Antigravity -"));
  // Read at most once a minute.
  putEntry("own/cursor.desktop", entryOf("Cursor Beta", "cursor"));
  clock_->advance(59);
  EXPECT_EQ(list(processes).front(), "10 Cursor Nightly cursor");
  clock_->advance(1);
  EXPECT_EQ(list(processes).front(), "10 Cursor Beta cursor");
}

}  // namespace
}  // namespace kestrel
