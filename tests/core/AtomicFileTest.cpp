#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Support/AtomicFile.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

class AtomicFileTest : public testing::Test {
 protected:
  [[nodiscard]] std::string content(const fs::path& path) const {
    return readWholeFile(path, 1 << 20).value_or("unreadable");
  }
  [[nodiscard]] std::ptrdiff_t filesInFolder() const {
    return std::distance(fs::directory_iterator(folder_), fs::directory_iterator());
  }

  const TestWorld world_;
  const fs::path folder_ = world_.directories().applicationSupport / "Kestrel/data";
  const fs::path file_ = folder_ / "state.json";
  const AtomicFileWriter writer_{world_.policy, Logger(world_.sink, "files")};
};

TEST_F(AtomicFileTest, ReplacesTheContentAlsoThroughLinksAndKeepsItPrivate) {
  const mode_t before = ::umask(0);
  EXPECT_TRUE(writer_.write(file_, "old"));
  ::umask(before);
  EXPECT_EQ(modeOf(file_) & 0777U, 0600U);
  EXPECT_EQ(modeOf(folder_), 0700U);
  fs::create_symlink(file_, folder_ / "link");
  fs::create_symlink(folder_ / "later", folder_ / "dangling");
  EXPECT_TRUE(writer_.write(folder_ / "link", "new") && writer_.write(folder_ / "dangling", "new"));
  EXPECT_EQ(content(file_), "new");
  EXPECT_EQ(content(folder_ / "later"), "new");
  EXPECT_TRUE(fs::is_symlink(folder_ / "link") && fs::is_symlink(folder_ / "dangling"));
  EXPECT_EQ(filesInFolder(), 4);
}

TEST_F(AtomicFileTest, AFailedWriteLeavesTheOldFileAndNothingElse) {
  ASSERT_TRUE(writer_.write(file_, "old"));
  // No file may grow beyond a size, as on a full disk.
  rlimit before{};
  ::getrlimit(RLIMIT_FSIZE, &before);
  const rlimit full{1000, before.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ::setrlimit(RLIMIT_FSIZE, &full);
  EXPECT_FALSE(writer_.write(file_, std::string(5000, 'x')));
  ::setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(world_.sink->count("Cannot write " + file_.string() + ": File too large (27)"), 1U);
  EXPECT_FALSE(writer_.write(file_ / "below a file", "x"));
  fs::create_directory(folder_ / "folder");
  EXPECT_FALSE(writer_.write(folder_ / "folder", "x"));
  EXPECT_EQ(content(file_), "old");
  EXPECT_EQ(filesInFolder(), 2);
}

TEST_F(AtomicFileTest, AsksTheWritePolicyFirst) {
  const fs::path foreign = world_.directories().home / ".claude/settings.json";
  writeFixture(foreign, "theirs");
  EXPECT_FALSE(writer_.write(foreign, "x"));
  EXPECT_FALSE(writer_.createIfMissing(world_.directories().home / ".zshrc"));
  EXPECT_FALSE(writer_.moveAside(foreign, folder_ / "x"));
  EXPECT_EQ(content(foreign), "theirs");
}

TEST_F(AtomicFileTest, ReadsOnlyRegularFilesUpToALimit) {
  ASSERT_TRUE(writer_.write(file_, "12345"));
  EXPECT_EQ(readWholeFile(file_, 5), "12345");
  EXPECT_EQ(readWholeFile(file_, 4), std::nullopt);
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(readWholeFile(folder_ / "pipe", 1000), std::nullopt) << "and must not wait for a writer";
}

}  // namespace
}  // namespace kestrel
