#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "KestrelCore/Power/KestrelWritePolicy.h"
#include "KestrelPlatform/Linux/LinuxChime.h"
#include "KestrelPlatform/Linux/LinuxLoginItem.h"
#include "KestrelPlatform/Simulated/ManualExecutor.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

struct LinuxUserServices : testing::Test {
  const TemporaryDirectories folders_;
  const fs::path home_ = folders_.directories().home;
  const std::shared_ptr<MemoryLogSink> sink_ = std::make_shared<MemoryLogSink>();
};

struct LinuxChimeTest : LinuxUserServices {
  void play(const fs::path& player) {
    missing_ = 0;
    chime_ = makeLinuxChime(executor_, sink_, player);
    chime_->play("Hero", [this] { ++missing_; });
  }
  const fs::path file_ = home_ / "file";
  ManualExecutor executor_;
  std::unique_ptr<Chime> chime_;
  int missing_ = 0;
};

TEST_F(LinuxChimeTest, KnowsWhatCannotBePlayedAndEndsAPlayerThatHangs) {
  play("/nowhere/kestrel-chime");
  EXPECT_EQ(sink_->count("/nowhere/kestrel-chime: No such file"), 1U);
  EXPECT_EQ(missing_, 1);
  std::ofstream(file_) << "#!/bin/sh\nexec sleep 600\n";
  ::chmod(file_.c_str(), 0700);
  play(file_);
  chime_->play("Hero", [this] { missing_ += 10; });
  executor_.advance(14.9);
  EXPECT_EQ(missing_, 0);
  executor_.advance(0.2);
  EXPECT_EQ(missing_, 1);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
}

/// The real player, sound library and sound theme, on a sound card that swallows everything, and on none.
TEST_F(LinuxChimeTest, ItsOwnPlayerPlays) {
  ::setenv("CANBERRA_DRIVER", "alsa", 1);
  ::setenv("ALSA_CONFIG_PATH", file_.c_str(), 1);
  for (const bool exists : {true, false}) {
    std::ofstream(file_) << (exists ? "pcm.!default { type null }" : "");
    play(ownProgram().parent_path() / "kestrel-chime");
    siginfo_t ended{};
    ASSERT_EQ(::waitid(P_ALL, 0, &ended, WEXITED | WNOWAIT), 0);
    executor_.advance(0.2);
    EXPECT_EQ(missing_, exists ? 0 : 1);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  }
}

struct LinuxLoginItemTest : LinuxUserServices {
  [[nodiscard]] std::unique_ptr<LoginItem> item(const fs::path& program) const {
    return makeLinuxLoginItem(entry_, program, files_);
  }

  const fs::path entry_ = autostartEntry(folders_.directories().preferences);
  const std::shared_ptr<const AtomicFileWriter> files_ = std::make_shared<AtomicFileWriter>(
      std::make_shared<KestrelWritePolicy>(folders_.directories(), sink_), Logger(sink_, "files"));
};

TEST_F(LinuxLoginItemTest, WritesAnEntryThatStartsTheProgramWhateverItsName) {
  const std::pair<std::string, std::string> cases[] = {{"my kestrel", R"(my kestrel")"},
                                                       {"100%", R"(100%%")"},
                                                       {R"(a"b$c`d)", R"(a\\"b\\$c\\`d")"},
                                                       {R"(a\b)", R"(a\\\\b")"}};
  for (const auto& [name, exec] : cases) {
    const fs::path program = home_ / name;
    std::ofstream{program};
    ::chmod(program.c_str(), 0700);
    const auto login = item(program);
    EXPECT_EQ(login->status(), LoginItem::kNotRegistered);
    ASSERT_EQ(login->registerItem(), std::nullopt);
    EXPECT_THAT(readWholeFile(entry_, 4096),
                testing::Optional(testing::HasSubstr("\nExec=\"" + home_.string() + "/" + exec + "\n")));
    EXPECT_EQ(login->status(), LoginItem::kEnabled);
    fs::remove(program);
    EXPECT_EQ(login->status(), LoginItem::kNotFound);
    ASSERT_EQ(login->unregisterItem(), std::nullopt);
  }
}

TEST_F(LinuxLoginItemTest, ReadsWhatDesktopsAndPeopleMadeOfIt) {
  fs::create_directories(entry_.parent_path());
  const std::pair<std::string, int> cases[] = {{"[Desktop Entry]\nExec=kestrel\n", 1},
                                               {"[Desktop Entry]\r\nHidden = true \r\n", 0},
                                               {"[Desktop Entry]\n[Desktop Action New]\nHidden=true\n", 1},
                                               {"[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n", 0},
                                               {"[Desktop Entry]\nTryExec", 1},
                                               {std::string("\0\xff=\n[", 5), 0},
                                               {"[Desktop Entry]\n" + std::string(70'000, '#'), 0}};
  for (const auto& [text, status] : cases) {
    std::ofstream(entry_) << text;
    EXPECT_EQ(item("/home/u/p/kestrel")->status(), status) << text.substr(0, 60);
  }
}

TEST_F(LinuxLoginItemTest, SaysWhyItCannotBeWritten) {
  fs::create_directories(entry_.parent_path().parent_path());
  std::ofstream{entry_.parent_path()};  // In the way.
  EXPECT_THAT(item(ownProgram())->registerItem(), testing::Optional(testing::HasSubstr("Cannot write")));
  fs::remove(entry_.parent_path());
  fs::create_directory_symlink(home_, entry_.parent_path());  // Leads out of the user's settings.
  EXPECT_NE(item(ownProgram())->registerItem(), std::nullopt);
  EXPECT_FALSE(fs::exists(home_ / entry_.filename()));
}

}  // namespace
}  // namespace kestrel
