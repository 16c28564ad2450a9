#include <gmock/gmock.h>

#include "tests/core/TestSupport.h"

#include "KestrelCore/Agents/Adapters/HookInstaller.h"

namespace kestrel {
namespace {

TEST(HookInstaller, ListsTheBackupsOfOneFileNewestFirst) {
  const TestWorld world;
  const HookInstaller installer(world.directories());
  const auto& folder = installer.backupDirectory();
  EXPECT_EQ(folder, world.directories().applicationSupport / "Kestrel/Backups");
  EXPECT_TRUE(installer.listBackups("/home/u/.claude.json").empty());
  auto written = std::filesystem::file_time_type::clock::now();
  const char* names[] = {"a.json.2", "a.json-1", "a.json", "a.jsonl", "config.toml", "a"};
  for (const char* name : names) {
    writeFixture(folder / name, "{}");
    std::filesystem::last_write_time(folder / name, written -= std::chrono::hours(1));
  }
  std::filesystem::create_directory(folder / "a.json.folder");
  EXPECT_THAT(installer.listBackups("/home/u/.gemini/a.json"),
              testing::ElementsAre(folder / names[0], folder / names[1], folder / names[2]));
}

}  // namespace
}  // namespace kestrel
