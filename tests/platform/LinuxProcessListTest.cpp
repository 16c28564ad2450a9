#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <memory>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "KestrelCore/Agents/ProcessMatching.h"
#include "KestrelCore/Agents/PsProcessList.h"
#include "KestrelPlatform/Linux/LinuxProcessList.h"
#include "KestrelPlatform/Linux/ProcFolder.h"
#include "KestrelPlatform/Simulated/MemoryLogSink.h"
#include "KestrelPlatform/Simulated/TemporaryDirectories.h"

namespace kestrel {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using testing::ElementsAre;

constexpr std::int32_t kParent = 7;

void write(const fs::path& path, const std::string& content) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << content;
}

std::string statText(const std::string& name, int parent, std::uint64_t startSeconds, unsigned long flags) {
  const auto ticks = startSeconds * static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
  return "77 (" + name + ") S " + std::to_string(parent) + " 1 1 0 -1 " + std::to_string(flags) +
         " 1 2 3 4 5 6 7 8 20 0 1 0 " + std::to_string(ticks) + " 1000 200 18446744073709551615 1 1 0 0\n";
}

/// A folder like /proc, and a list that reads it at a time of the test's choice.
class FakeProcTest : public testing::Test {
 protected:
  void put(int pid, const std::string& words, const std::string& name = "prog",
           std::uint64_t startSeconds = 100, unsigned long flags = 0x400000) const {
    write(root_ / std::to_string(pid) / "stat", statText(name, kParent, startSeconds, flags));
    write(root_ / std::to_string(pid) / "cmdline", words);
  }
  /// "pid line" of each row.
  std::vector<std::string> lines() {
    std::vector<std::string> lines;
    for (const auto& row : list_->rows().value_or(std::vector<ProcessRow>())) {
      EXPECT_EQ(row.parentPid, kParent);
      lines.push_back(std::to_string(row.pid) + " " + row.commandLine);
    }
    return lines;
  }

  TemporaryDirectories folders_;
  const fs::path root_ = folders_.root() / "proc";
  double now_ = 1000;
  const std::shared_ptr<MemoryLogSink> sink_ = std::make_shared<MemoryLogSink>();
  const std::unique_ptr<ProcessList> list_ = makeLinuxProcessList(sink_, {root_, [this] { return now_; }});
};

TEST(LinuxProcessText, WordsBecomeOneLineOfText) {
  const struct {
    std::string words;
    std::string line;
  } rows[] = {
      {"node\0/x/codex\0--resume\0"s, "node /x/codex --resume"},
      {"claude\0\0\0\0\0\0\0\0"s, "claude"},
      {"sh\0-c\0echo a\nb\tc\x1B[m\x7F\0"s, "sh -c echo a b c [m"},
      {"\xFFx\0\xC3\xA9\xC3"s, "?x \u00e9?"},
      {"\0\0"s, ""},
  };
  for (const auto& row : rows) EXPECT_EQ(joinedCommandLine(row.words), row.line);
}

TEST(LinuxProcessText, ANameMayHoldAnythingAndGarbageIsRefused) {
  for (const char* name : {"x", "", "a b", ") S 9 (", "((", "))", "a\\nb"}) {
    const auto stat = parseProcStat(statText(name, 42, 7, 0x200040));
    ASSERT_TRUE(stat) << name;
    EXPECT_EQ(stat->name, name);
    EXPECT_TRUE(stat->parentPid == 42 && stat->isKernelThread);
  }
  for (const char* text :
       {"", "77", "77 (x)", "77 (x) S", "77 x S 1 1 1", ") ( S 1", "77 (x) S y 1 1 0 -1 0"}) {
    EXPECT_FALSE(parseProcStat(text)) << text;
  }
}

TEST_F(FakeProcTest, ListsProcessesWithACommandLineInOrder) {
  put(300, "b\0"s);
  put(20, "a\0--x\0"s);
  put(2, "", "kthreadd", 100, 0x208040);
  put(25, "", "zombie");
  put(30, std::string(2'000'000, 'x') + "\0end\0"s);
  write(root_ / "self/cmdline", "no process");
  write(root_ / "40/status", "ended while it was read");
  write(root_ / "99999999999/stat", "no pid");
  EXPECT_THAT(lines(), ElementsAre("20 a --x", "30 " + std::string(65'536, 'x'), "300 b"));
  fs::remove_all(root_ / "20");
  put(26, "new");
  EXPECT_EQ(lines().front(), "26 new");
  EXPECT_TRUE(sink_->lines().empty());
}

TEST_F(FakeProcTest, CommandLinesOfOldProcessesAreKeptForSeconds) {
  put(20, "before");
  put(21, "before", "bash");
  put(22, "an aider");
  EXPECT_THAT(lines(), ElementsAre("20 before", "21 before", "22 an aider"));
  put(20, "after");
  put(21, "after", "bash");
  put(22, "");
  EXPECT_THAT(lines(), ElementsAre("20 before", "21 after")) << "shells and agents are watched";
  now_ += 5;
  EXPECT_THAT(lines(), ElementsAre("20 after", "21 after"));
  put(20, "again");
  now_ += 1;
  EXPECT_THAT(lines(), ElementsAre("20 again", "21 after")) << "young since it changed";
  put(20, "");
  EXPECT_THAT(lines(), ElementsAre("21 after")) << "ended, not waited for";
}

TEST_F(FakeProcTest, APidThatIsUsedAgainIsAnotherProcess) {
  put(20, "first");
  EXPECT_THAT(lines(), ElementsAre("20 first"));
  // Where the file system gives it the same identity, its start time shows it.
  put(20, "second", "prog", 1009);
  now_ += 30;
  EXPECT_THAT(lines(), ElementsAre("20 second"));
}

TEST_F(FakeProcTest, AFolderThatCannotBeReadIsSaidOnce) {
  EXPECT_EQ(list_->rows(), std::nullopt);
  EXPECT_EQ(list_->rows(), std::nullopt);
  EXPECT_EQ(sink_->count("Process list unavailable: cannot read " + root_.string()), 1U);
  put(20, "a");
  EXPECT_THAT(lines(), ElementsAre("20 a"));
  fs::remove_all(root_ / "20");
  EXPECT_EQ(list_->rows(), std::nullopt) << "not even this process: not mounted";
}

/// /bin/sh under another name, stopped until the end.
class Waiting {
 public:
  explicit Waiting(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    EXPECT_EQ(::posix_spawn(&pid_, "/bin/sh", nullptr, nullptr, arguments.data(), environ), 0);
  }
  ~Waiting() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  Waiting(const Waiting&) = delete;
  Waiting& operator=(const Waiting&) = delete;

  [[nodiscard]] pid_t pid() const { return pid_; }

 private:
  pid_t pid_ = -1;
};

std::map<std::int32_t, ProcessRow> rowsByPid(ProcessList& list) {
  std::map<std::int32_t, ProcessRow> byPid;
  for (auto& row : list.rows().value_or(std::vector<ProcessRow>())) byPid[row.pid] = std::move(row);
  return byPid;
}

std::string matchText(const ProcessRow& row) {
  const auto match = matchCommandLine(row);
  return match ? match->name + (match->isWorking ? " works: " : ": ") + match->command : "";
}

TEST(LinuxProcessList, TellsTheSameAsPsOfEveryLiveProcess) {
  ::unsetenv("COLUMNS");  // cuts what ps prints
  const std::string wait = "kill -STOP $$; :";
  const std::vector<std::string> agents[] = {{"claude", "-c", wait, "--resume"},
                                             {"node", "-c", wait, "/x/bin/codex", "", "two  blanks", " "},
                                             {"/usr/bin/aider", "-c", wait},
                                             {"opencode", "-c", wait, std::string(60'000, 'y')}};
  std::vector<std::unique_ptr<Waiting>> children;
  for (const auto& words : agents) children.push_back(std::make_unique<Waiting>(words));
  const auto printable = [](const std::string& text) {
    return std::ranges::all_of(text, [](unsigned char c) { return std::isprint(c) != 0; });
  };

  PsProcessList ps;
  const auto list = makeLinuxProcessList(std::make_shared<MemoryLogSink>());
  const auto before = rowsByPid(ps);
  const auto rows = rowsByPid(*list);
  const auto after = rowsByPid(ps);
  for (const auto& [pid, row] : rows) {
    const auto first = before.find(pid);
    const auto last = after.find(pid);
    if (first == before.end() || last == after.end() || first->second != last->second) continue;
    if (!printable(row.commandLine)) continue;
    EXPECT_EQ(row.commandLine, first->second.commandLine);
    EXPECT_EQ(matchText(row), matchText(first->second));
  }
  for (const auto& child : children) {
    ASSERT_TRUE(rows.contains(child->pid()) && before.contains(child->pid()));
    EXPECT_EQ(rows.at(child->pid()).parentPid, ::getpid());
    EXPECT_NE(matchText(rows.at(child->pid())), "");
  }
}

}  // namespace
}  // namespace kestrel
