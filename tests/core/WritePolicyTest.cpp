#include <filesystem>
#include <gmock/gmock.h>
#include <string>

#include "tests/core/Soon.h"
#include "tests/core/TestSupport.h"

#include "KestrelCore/Presentation/ExportToFile.h"
#include "KestrelCore/UsageCoordinator.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
enum class Verdict { allowed, prohibited, outside };

class WritePolicyTest : public testing::Test {
 protected:
  /// The decision, as it was logged.
  [[nodiscard]] Verdict judge(const fs::path& path, const KestrelWritePolicy* policy = nullptr) const {
    world_.sink->clear();
    if ((policy != nullptr ? *policy : *world_.policy).mayWrite(path)) return Verdict::allowed;
    const bool prohibited = world_.sink->count("Blocked write attempt to prohibited path: /") == 1;
    return prohibited ? Verdict::prohibited : Verdict::outside;
  }

  const TestWorld world_;
  const fs::path home_ = world_.directories().home;
  const fs::path own_ = world_.directories().applicationSupport / "Kestrel";
};

TEST_F(WritePolicyTest, JudgesPathsAsTheyAreSpelled) {
  const fs::path preferences = world_.directories().preferences;
  const struct {
    fs::path path;
    Verdict expected;
  } rows[] = {
      {own_, Verdict::allowed},
      {own_ / "a/../../Kestrel/./x", Verdict::allowed},
      {own_ / "../Other/x", Verdict::outside},
      {world_.directories().logs / "Kestrel/kestrel.log", Verdict::allowed},
      {world_.directories().temporary / "x", Verdict::allowed},
      {world_.directories().runtimePrefixes[0].string() + "-helper.sock", Verdict::allowed},
      {preferences / "com.kestrel.app.json", Verdict::allowed},
      {preferences / "com.example.app.json", Verdict::outside},
      {home_ / ".claude/settings.json", Verdict::prohibited},
      {own_ / "../../../.codex/config.toml", Verdict::prohibited},
      {"kestrel.json", Verdict::outside},
      {own_ / std::string(5000, 'x'), Verdict::outside},
  };
  for (const auto& row : rows) EXPECT_EQ(judge(row.path), row.expected) << row.path;
}

TEST_F(WritePolicyTest, NamesThePathAndTheReasonWhenItThrows) {
  try {
    world_.policy->assertCanWrite("/etc/../etc/kestrel.conf");
    ADD_FAILURE();
  } catch (const KestrelWriteSecurityError& error) {
    EXPECT_EQ(
        error.errorDescription(),
        "Kestrel write security violation: Cannot write to '/etc/kestrel.conf'. Reason: Path is outside "
        "Kestrel-owned directories. Third-party configuration modification is prohibited.");
  }
  EXPECT_EQ(world_.sink->count("Disallowed write to non-whitelisted path: /etc/kestrel.conf"), 1U);
}

TEST_F(WritePolicyTest, FollowsLinksOutOfItsFolders) {
  fs::create_directories(own_);
  fs::create_directories(home_ / ".codex");
  fs::create_directories(home_ / "elsewhere/deep");
  const struct {
    const char* name;
    fs::path target;
    fs::path written;
    Verdict expected;
  } rows[] = {
      {"file", home_ / ".zshrc", "file", Verdict::prohibited},  // Leads nowhere yet.
      {"folder", home_ / ".codex", "folder/config.toml", Verdict::prohibited},
      {"other", home_ / "elsewhere", "other/new/x", Verdict::outside},
      {"chain", "other", "chain/x", Verdict::outside},
      {"loop", "loop", "loop/x", Verdict::outside},
      {"inside", own_ / "run", "inside/x", Verdict::allowed},
      // ".." after a link leaves the link's target, whatever the spelling suggests.
      {"deep", home_ / "elsewhere/deep", "deep/../x", Verdict::outside},
  };
  for (const auto& row : rows) {
    fs::create_symlink(row.target, own_ / row.name);
    EXPECT_EQ(judge(own_ / row.written), row.expected) << row.written;
  }
}

TEST_F(WritePolicyTest, ProtectsWhatAnotherToolKeepsInsideTheFoldersOfKestrel) {
  fs::create_directories(own_ / "dotfiles");
  fs::create_symlink(own_ / "dotfiles/claude", home_ / ".claude");
  fs::create_symlink(own_ / "dotfiles/zshrc", home_ / ".zshrc");  // Leads nowhere yet.
  EXPECT_EQ(judge(own_ / "dotfiles/claude/settings.json"), Verdict::prohibited);
  EXPECT_EQ(judge(own_ / "dotfiles/zshrc"), Verdict::prohibited);
}

TEST_F(WritePolicyTest, WorksForFoldersReachedThroughLinks) {
  fs::create_symlink(home_, world_.folders.root() / "linked");
  const auto moved = [&](const fs::path& path) {
    return world_.folders.root() / "linked" / path.lexically_relative(home_);
  };
  Directories linked = world_.directories();
  linked.home = moved(linked.home);
  linked.applicationSupport = moved(linked.applicationSupport);
  const KestrelWritePolicy policy(linked, world_.sink);
  EXPECT_EQ(judge(linked.applicationSupport / "Kestrel/x", &policy), Verdict::allowed);
  EXPECT_EQ(judge(linked.home / ".ssh/config", &policy), Verdict::prohibited);
  fs::create_directories(own_);
  fs::create_symlink(home_ / ".ssh", own_ / "keys");
  EXPECT_EQ(judge(linked.applicationSupport / "Kestrel/keys/config", &policy), Verdict::prohibited);
}

TEST_F(WritePolicyTest, AdmitsTheFileThatAPersonChoseForOneWrite) {
  ManualExecutor main(world_.clock);
  const auto files = std::make_shared<const AtomicFileWriter>(world_.policy, Logger(world_.sink, "files"));
  ExportToFile exporter(files, main);
  std::optional<ExportToFile::Result> result;
  const auto keep = [&](const ExportToFile::Result& given) { result = given; };
  const auto write = [&](const fs::path& path) {
    result.reset();
    exporter.write(path, "x", keep);
    return soon(main, [&] { return result.has_value(); }) && result->isWritten;
  };
  const fs::path chosen = home_ / "Documents/usage.json";
  EXPECT_TRUE(write(chosen));
  EXPECT_EQ(readWholeFile(chosen, 10), "x");
  EXPECT_FALSE(files->write(chosen, "y")) << "chosen for one write only";
  fs::create_directories(home_ / ".claude");
  fs::create_symlink(home_ / ".claude/settings.json", home_ / "link.json");
  writeFixture(home_ / "file", "");
  for (const fs::path& path : {home_ / ".claude/settings.json", home_ / "link.json", home_ / "a/../.ssh/id",
                               home_ / "file/usage.json", home_ / "Documents", fs::path()}) {
    EXPECT_FALSE(write(path)) << path;
    EXPECT_THAT(result->text, testing::StartsWith("Nothing was saved. Cannot write "));
  }
  UsageCoordinator usage(usersOwnUsage(main, world_.directories(), files, world_.clock, world_.sink));
  result.reset();
  exporter.writeUsage(chosen, usage, keep);
  EXPECT_TRUE(soon(main, [&] { return result.has_value(); }));
  EXPECT_THAT(readWholeFile(chosen, 10'000).value_or(""), testing::HasSubstr("\"eventCount\": 0"));
}

}  // namespace
}  // namespace kestrel
