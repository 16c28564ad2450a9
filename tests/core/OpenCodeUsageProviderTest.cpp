#include <csignal>
#include <cstdio>
#include <map>
#include <sqlite3.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/core/UsageReaderFixture.h"

#include "KestrelCore/Support/UnixSocket.h"
#include "KestrelCore/Usage/Providers/FileStamp.h"
#include "KestrelCore/Usage/Providers/OpenCodeUsageProvider.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A process of its own that writes to the database as OpenCode does, until it ends or is killed.
class Writer {
 public:
  explicit Writer(const std::filesystem::path& path, const char* mode = "WAL") {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    socket_ = UniqueDescriptor(ends[0]);
    UniqueDescriptor other(ends[1]);
    pid_ = ::fork();
    if (pid_ == 0) serve(path, other.get());
    execute(std::string("PRAGMA journal_mode=") + mode);
    execute("CREATE TABLE message(id TEXT, session_id TEXT, time_created INTEGER, data TEXT)");
  }
  ~Writer() { end(0); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  void execute(const std::string& statement) const {
    char result = SQLITE_ERROR;
    EXPECT_TRUE(sendAll(socket_.get(), statement + "\n") && ::recv(socket_.get(), &result, 1, 0) == 1);
    EXPECT_EQ(result, SQLITE_OK) << statement;
  }
  void put(const std::string& id, std::int64_t time, const std::string& data) const {
    execute(fmt::format("INSERT INTO message VALUES('{}','S',{},'{}')", id, time, data));
  }
  void end(int signal) {
    if (pid_ > 0 && signal != 0) ::kill(pid_, signal);
    socket_.reset();
    if (pid_ > 0) ::waitpid(std::exchange(pid_, 0), nullptr, 0);
  }

 private:
  [[noreturn]] void serve(const std::filesystem::path& path, int socket) {
    socket_.reset();
    sqlite3* database = nullptr;
    ::sqlite3_open(path.c_str(), &database);
    std::FILE* const input = ::fdopen(socket, "r");
    char* line = nullptr;
    for (std::size_t size = 0; ::getline(&line, &size, input) > 0;) {
      const char result = static_cast<char>(::sqlite3_exec(database, line, nullptr, nullptr, nullptr));
      (void)::send(socket, &result, 1, 0);
    }
    ::sqlite3_close(database);
    ::_exit(0);
  }

  UniqueDescriptor socket_;
  pid_t pid_ = 0;
};

std::string tokens(int input, const std::string& more = "") {
  return fmt::format(
      R"({{"modelID":"gpt-4o","tokens":{{"input":{},"output":0,"cache":{{"read":0,"write":0}}}}{}}})", input,
      more);
}

class OpenCodeUsageProviderTest : public testing::Test {
 protected:
  OpenCodeUsageProviderTest() { std::filesystem::create_directories(path_.parent_path()); }

  /// Everything that tells of a change in the agent's folder.
  [[nodiscard]] std::map<std::string, FileStamp> folder() const {
    std::map<std::string, FileStamp> stamps;
    struct stat status {};
    EXPECT_EQ(::stat(path_.parent_path().c_str(), &status), 0);
    stamps["."] = stampOf(status);
    for (const auto& entry : std::filesystem::directory_iterator(path_.parent_path())) {
      stamps[entry.path().filename()] = stampOf(entry.path().string()).value_or(FileStamp());
    }
    return stamps;
  }

  UsageReaderFixture openCode_{makeOpenCodeUsageReader};
  const std::filesystem::path path_ = openCodeDatabaseFile(openCode_.home());
};

TEST_F(OpenCodeUsageProviderTest, ARowBecomesAnEventAndAReport) {
  EXPECT_THAT(openCode_.poll(), IsEmpty());
  const Writer writer(path_);
  writer.put("m1", 1731715200125,
             R"({"modelID":"gpt-4o","tokens":{"input":1000,"output":200,"reasoning":30,"total":5330,)"
             R"("cache":{"read":4000,"write":100}},"time":{"completed":1731715201000}})");
  const auto events = openCode_.poll();
  ASSERT_EQ(events.size(), 1);
  // 1000 × 2.5 + 200 × 10 + 30 × 10 + 4000 × 1.25 millionths of a dollar.
  EXPECT_NEAR(events[0].costEstimateUSD.value_or(0), 0.0098, 1e-12);
  EXPECT_EQ(shown(events[0]),
            R"({"agentType":"opencode","cacheWriteTokens":100,"cachedTokens":4000,"contextWindow":128000,)"
            R"("id":"m1","inputTokens":1000,"modelId":"gpt-4o","outputTokens":200,"reasoningTokens":30,)"
            R"("sessionId":"S","source":"opencode-db","timestamp":753408000.125,"totalTokens":5330,)"
            R"("turnId":"m1"})");
  EXPECT_EQ(openCode_.report()->actionableSummaryLine(), "123k context left · 96% remaining · $0.01 est.");
  // A counted message stays as it was counted.
  writer.execute("UPDATE message SET data = '" + tokens(9) + "'");
  EXPECT_THAT(openCode_.poll(), IsEmpty());
}

TEST_F(OpenCodeUsageProviderTest, WhatStandsInForMissingMembersAndWhatIsPassedOver) {
  const Writer writer(path_);
  writer.put("old", 1, R"({"tokens":{"input":5,"output":2},"cost":1.5})");
  writer.put("new", 9,
             R"({"model":"mystery","tokens":{"input":6,"cache":{"read":90}},"time":{"completed":1}})");
  writer.put("text", 3, R"("tokens")");
  writer.put("odd", 5, R"({"tokens":{"input":"1","output":-1,"total":1e30},"time":{"completed":1}})");
  writer.execute(R"(INSERT INTO message VALUES(NULL,'S',6,'{"tokens":{}}'),('m',NULL,7,'{"tokens":{}}'))");
  std::vector<std::string> found;
  for (const auto& event : openCode_.poll()) {
    found.push_back(fmt::format("{} {} {} {} {}", event.id, *event.modelId, event.totalTokens.value_or(-1),
                                event.contextWindow.value_or(-1), event.costEstimateUSD.value_or(-1)));
  }
  EXPECT_THAT(found, ElementsAre("old nemotron-3.5-lightning-free 7 128000 1.5",
                                 "odd nemotron-3.5-lightning-free -1 128000 0", "new mystery 6 -1 -1"));
  // The report is the newest message's, which cannot know its window.
  EXPECT_EQ(openCode_.report()->actionableSummaryLine(), "6 tokens");
}

TEST_F(OpenCodeUsageProviderTest, AMessageIsCountedWhenItHasTokensHoweverLate) {
  const Writer writer(path_);
  writer.put("late", 1, tokens(0));
  writer.put("failed", 2, tokens(0, R"(,"time":{"completed":3})"));
  writer.put("gone", 3, tokens(0));
  EXPECT_THAT(turnIds(openCode_.poll()), ElementsAre("failed"));
  for (int i = 0; i < 26; ++i) writer.put(fmt::format("m{:02}", i), 100 + i, tokens(1));
  // Of those written between two readings only the newest 25 show, and what is waited for.
  EXPECT_THAT(openCode_.poll(), testing::SizeIs(25));
  writer.execute("UPDATE message SET data = '" + tokens(500) + "' WHERE id = 'late'");
  writer.execute("DELETE FROM message WHERE id = 'gone'");
  EXPECT_THAT(turnIds(openCode_.poll()), ElementsAre("late"));
  EXPECT_THAT(openCode_.poll(), IsEmpty());
  EXPECT_EQ(openCode_.counted().totalTokens, 525);
  EXPECT_EQ(openCode_.report()->sessionUsage.inputTokens, 1);
}

TEST_F(OpenCodeUsageProviderTest, ReadsInEveryStateOfTheFilesAndLeavesNoTrace) {
  enum class End { running, killed, closed };
  // Journal mode, what became of the writer, whether its index is lost and an empty log left; the files.
  const std::tuple<const char*, End, bool, bool, const char*> states[] = {
      {"WAL", End::running, false, false, "opencode.db opencode.db-shm opencode.db-wal"},
      {"DELETE", End::running, false, false, "opencode.db"},
      {"WAL", End::killed, false, false, "opencode.db opencode.db-shm opencode.db-wal"},
      {"WAL", End::killed, true, false, "opencode.db opencode.db-wal"},
      {"WAL", End::closed, false, false, "opencode.db"},
      {"WAL", End::closed, false, true, "opencode.db opencode.db-wal"},
  };
  for (const auto& [mode, end, isIndexLost, hasEmptyLog, files] : states) {
    std::filesystem::remove_all(path_.parent_path());
    std::filesystem::create_directories(path_.parent_path());
    openCode_.restart();
    Writer writer(path_, mode);
    writer.put("m1", 1, tokens(1));
    writer.execute("PRAGMA wal_checkpoint");
    writer.put("m2", 2, tokens(1));
    if (end != End::running) writer.end(end == End::killed ? SIGKILL : 0);
    if (isIndexLost) std::filesystem::remove(path_.string() + "-shm");
    if (hasEmptyLog) writeFixture(path_.string() + "-wal", "");
    const auto before = folder();
    std::string names;
    for (const auto& [name, stamp] : before) names += name + " ";
    EXPECT_EQ(names, std::string(". ") + files + " ");
    for (int i = 0; i < 3; ++i) {
      EXPECT_THAT(turnIds(openCode_.poll()), ElementsAre("m1", "m2"));
      EXPECT_THAT(openCode_.poll(), IsEmpty());
      openCode_.restart();
    }
    EXPECT_EQ(folder(), before);
  }
}

TEST_F(OpenCodeUsageProviderTest, ABusyOrUnusableDatabaseIsTriedAgain) {
  for (const std::string content : {"", "no database at all", "SQLite format 3"}) {
    writeFixture(path_, content + std::string(content.empty() ? 0 : 4096, 'x'));
    EXPECT_THAT(openCode_.poll(), IsEmpty());
  }
  std::filesystem::remove(path_);
  const Writer writer(path_);
  writer.execute("PRAGMA locking_mode=EXCLUSIVE");
  writer.put("m1", 1, tokens(1));
  for (int i = 0; i < 3; ++i) EXPECT_THAT(openCode_.poll(), IsEmpty());
  writer.execute("PRAGMA locking_mode=NORMAL; SELECT * FROM message");
  EXPECT_THAT(turnIds(openCode_.poll()), ElementsAre("m1"));
}

}  // namespace
}  // namespace kestrel
