#include <csignal>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include "tests/core/UsageStoreFixture.h"

#include "KestrelCore/Usage/UsageJsonText.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;

class UsageJournalTest : public testing::Test, public UsageStoreWorld {
 protected:
  static std::string lineOf(const std::string& turnId) {
    std::string line;
    appendJson(line, turn(turnId));
    return line + "\n";
  }
  /// While no file may grow beyond a size, as on a full disk.
  static void onFullDisk(std::uintmax_t limit, const std::function<void()>& run) {
    const rlimit full{limit, RLIM_INFINITY};
    const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
    std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &full);
    run();
    ::setrlimit(RLIMIT_FSIZE, &none);
  }
};

TEST_F(UsageJournalTest, TakesTheEventsOfAGrownStoreUntilTheFileHasThem) {
  recordTurns("old-");
  const auto before = content(file);
  EXPECT_TRUE(store->record(turn("a")) && store->record(turn("b\n\"")));
  EXPECT_FALSE(store->record(turn("a")));
  EXPECT_EQ(content(file), before);
  EXPECT_EQ(content(journal), lineOf("a") + lineOf("b\n\""));
  const auto all = store->allEvents();
  open();
  EXPECT_EQ(store->allEvents(), all);
  store->saveWhenIdle();
  EXPECT_EQ(content(file), before) << "too little for it";
  const auto quarter = static_cast<int>(before.size() / 4 / lineOf("new-10").size());
  recordTurns("new-", quarter - 5);
  EXPECT_EQ(content(file), before);
  recordTurns("more-", 5);
  EXPECT_GT(content(file).size(), before.size() * 5 / 4);
  EXPECT_FALSE(fs::exists(journal));
  recordTurns("idle-", quarter / 3);
  store->saveWhenIdle();
  EXPECT_FALSE(fs::exists(journal));
  EXPECT_EQ(onDisk(), store->allEvents());
  recordTurns("last-", 3);
  const std::string lines = content(journal);
  store->saveAtStop();
  EXPECT_FALSE(fs::exists(journal));
  const auto complete = store->allEvents();
  store.reset();
  writeFixture(journal, lines);  // As after a crash between the writing of the file and its removal.
  open();
  EXPECT_EQ(store->allEvents(), complete);
  store->resetStore();
  EXPECT_EQ(content(file), R"({"schemaVersion":1,"events":[],"sessions":{},"seenKeys":[]})");
  EXPECT_FALSE(fs::exists(journal));
}

TEST_F(UsageJournalTest, LosesOnlyWhatIsBroken) {
  const std::string good = lineOf("good");
  const std::string better = lineOf("better");
  const std::string half = good.substr(0, good.size() - 1);
  const std::tuple<std::string, std::string, std::size_t, std::size_t> cases[] = {
      {good + better, "", 0, 2},
      {better, half, 0, 1},
      {half.substr(0, 40) + "\n" + better, "", 1, 1},
      {std::string(5000, '\0') + "\n\n{}\n" + better, "", 3, 1},
      {half + "}\n" + better, "", 1, 1},
      // So much that the file is written anew.
      {std::string(3'000'000, '[') + "\n" + good, "", 1, 1}};
  recordTurns("old-");
  for (const auto& [lines, torn, bad, events] : cases) {
    SCOPED_TRACE(lines.substr(0, 300));
    store.reset();
    writeFixture(journal, lines + torn);
    world.sink->clear();
    open();
    EXPECT_EQ(store->eventCount(), 500 + events);
    EXPECT_EQ(logged(std::to_string(bad) + " unusable lines of the usage journal"), bad > 0 ? 1U : 0U);
    EXPECT_TRUE(store->record(turn("next")));
    EXPECT_EQ(onDisk(), store->allEvents());
    EXPECT_EQ(content(journal), lines.size() < 10'000 ? lines + lineOf("next") : "unreadable");
  }
}

TEST_F(UsageJournalTest, SavesWithTheNextEventWhatWasRefused) {
  ASSERT_TRUE(store->record(turn("first")));
  onFullDisk(100, [&] { EXPECT_TRUE(store->record(turn("second"))) << "it is in memory"; });
  EXPECT_EQ(logged("usage store: Cannot write " + file.string() + ": File too large (27)"), 1U);
  EXPECT_TRUE(store->record(turn("third")));
  EXPECT_EQ(onDisk().size(), 3U);
  recordTurns("old-");
  recordTurns("a", 3);
  const std::string lines = content(journal);
  onFullDisk(lines.size() + 50, [&] { EXPECT_TRUE(store->record(turn("torn"))); });  // Within its line.
  EXPECT_EQ(logged("Failed to save usage store: Cannot append to " + journal.string()), 1U);
  EXPECT_TRUE(store->record(turn("after")));
  EXPECT_EQ(content(journal), lines + lineOf("torn") + lineOf("after"));
  onFullDisk(10, [&] { store->resetStore(); });
  EXPECT_FALSE(fs::exists(journal)) << "it went first";
  // The same where the folder cannot be written, or somebody removed what is there.
  store.reset();
  world.sink->clear();
  fs::remove_all(file.parent_path());
  writeFixture(file.parent_path(), "no folder");
  open();
  EXPECT_TRUE(store->record(turn("a")));
  EXPECT_EQ(logged("Failed to save usage store: Cannot write"), 1U);
  fs::remove(file.parent_path());
  recordTurns("b-");
  recordTurns("c", 2);
  fs::remove(journal);
  EXPECT_TRUE(store->record(turn("d")));
  fs::create_directory(journal);
  open();
  EXPECT_EQ(logged("Cannot read the usage journal beside"), 1U);
  EXPECT_TRUE(store->record(turn("e")));
  EXPECT_EQ(onDisk(), store->allEvents());
  EXPECT_TRUE(fs::is_directory(journal.string() + aside));
}

TEST_F(UsageJournalTest, OneProcessWritesWhereItMayAndOthersRead) {
  auto elsewhere = dependencies();
  elsewhere.file = world.directories().home / ".claude/usage_store.json";
  EXPECT_TRUE(UsageStore(elsewhere).record(turn("a")));
  EXPECT_EQ(logged("Failed to save usage store: Kestrel write security violation: Cannot write to '"), 1U);
  EXPECT_FALSE(fs::exists(elsewhere.file.parent_path()));

  recordTurns("old-");
  recordTurns("a", 2);
  const auto all = store->allEvents();
  const auto before = content(file) + content(journal);
  UsageStore second(dependencies());
  EXPECT_EQ(logged("Another process keeps the usage store " + file.string()), 1U);
  EXPECT_EQ(second.allEvents(), all);
  EXPECT_TRUE(second.record(turn("b")));
  second.resetStore();
  second.saveAtStop();
  EXPECT_EQ(content(file) + content(journal), before);
  open();
  EXPECT_TRUE(store->record(turn("b"))) << "the lock went with the first";
  EXPECT_EQ(onDisk().size(), all.size() + 1);
}

}  // namespace
}  // namespace kestrel
