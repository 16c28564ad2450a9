#include <future>

#include "tests/core/UsageReaderFixture.h"

#include "KestrelCore/Usage/Providers/ClaudeUsageProvider.h"

namespace kestrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The start of a line; the usage's members, a brace for each open object and a line feed follow.
std::string line(const std::string& uuid, const std::string& message, const std::string& usage) {
  return R"({"type":"assistant","uuid":")" + uuid +
         R"(","sessionId":"S","timestamp":"2026-11-21T03:00:00.250Z","requestId":"r1","message":{"id":")" +
         message + R"(","model":"claude-3-5-sonnet","content":[{"text":"x"}],"usage":{)" + usage + "}}}\n";
}

std::string counts(int input, int output) {
  return fmt::format(R"("input_tokens":{},"output_tokens":{})", input, output);
}

class ClaudeUsageProviderTest : public testing::Test {
 protected:
  UsageReaderFixture claude_{makeClaudeUsageReader};
  const std::filesystem::path folder_ = ".claude/projects/-home-u-p";
};

TEST_F(ClaudeUsageProviderTest, ALineBecomesAnEventAndAReport) {
  claude_.append(
      folder_ / "s1.jsonl",
      line("u1", "m1",
           R"("input_tokens":1000,"output_tokens":200,"cache_read_input_tokens":50000,)"
           R"("cache_creation_input_tokens":4000,"output_tokens_details":{"thinking_tokens":30})"));
  const auto events = claude_.poll();
  ASSERT_EQ(events.size(), 1);
  // 1000 × 3 + 200 × 15 + 50000 × 0.3 + 4000 × 3.75 + 30 × 15 millionths of a dollar.
  EXPECT_NEAR(events[0].costEstimateUSD.value_or(0), 0.03645, 1e-12);
  EXPECT_EQ(
      shown(events[0]),
      R"({"agentType":"claude","cacheWriteTokens":4000,"cachedTokens":50000,"contextWindow":200000,"id":"",)"
      R"("inputTokens":1000,"modelId":"claude-3-5-sonnet","outputTokens":200,"reasoningTokens":30,)"
      R"("sessionId":"S","source":"claude-project-log","timestamp":816922800.25,"totalTokens":1230,)"
      R"("turnId":"u1"})");
  const auto report = claude_.report();
  ASSERT_TRUE(report);
  EXPECT_EQ(report->actionableSummaryLine(), "145k context left · 72% remaining · $0.04 est.");
  EXPECT_EQ(report->lastUpdated, claude_.world.clock->now());
}

TEST_F(ClaudeUsageProviderTest, WhichLinesCountAndWhatStandsInForMissingMembers) {
  const std::string usage = R"("message":{"usage":{"input_tokens":7}})";
  // Of each event the turn, session, model, total and whether its time is that of reading; or no event.
  const std::pair<std::string, std::string> rows[] = {
      {R"({"type":"result",)" + usage + "}", "f_turn_0 f claude-3-5-sonnet 7 now"},
      {R"({"type":"user",)" + usage + "}", ""},
      {R"({"type":"assistant","message":{"usage":[7],"input_tokens":7}})", ""},
      {R"({"type":"assistant","message":{"usage":{"output_tokens_details":{"thinking_tokens":7}}}})", ""},
      {R"({"type":"assistant","message":{"usage":{"input_tokens":-7,"output_tokens":"7"}}})", ""},
      {R"({ "type" : "assistant", "uuid":7, "message" : { "model":"new", "usage" : { "output_tokens" : 7 } } })",
       "f_turn_5 f new 7 now"},
      {R"({"type":"assistant","uuid":"","timestamp":"soon",)" + usage + "}", " f claude-3-5-sonnet 7 now"},
      {"{broken \"usage\"", ""},
      {R"({"type":"assistant","uuid":"u","sessionId":"","timestamp":"2026-11-21T03:00:00+01:00",)" + usage +
           "}",
       "u  claude-3-5-sonnet 7 1795226400"},
  };
  std::string text;
  std::vector<std::string> expected;
  for (const auto& [line, event] : rows) {
    text += line + "\n";
    if (!event.empty()) expected.push_back(event);
  }
  claude_.append(folder_ / "f.jsonl", text);
  std::vector<std::string> found;
  for (const auto& event : claude_.poll()) {
    const bool isNow = event.timestamp == claude_.world.clock->now();
    found.push_back(fmt::format("{} {} {} {} {}", *event.turnId, event.sessionId, *event.modelId,
                                event.totalTokens.value_or(-1),
                                isNow ? "now" : fmt::format("{:.0f}", event.timestamp.secondsSince1970())));
    EXPECT_EQ(event.costEstimateUSD.has_value(), event.modelId != "new");
    EXPECT_EQ(event.contextWindow, 200'000);
  }
  EXPECT_EQ(found, expected);
  // The index starts anew with each reading.
  claude_.append(folder_ / "f.jsonl", rows[1].first + "\n" + rows[0].first + "\n");
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("f_turn_1"));
}

TEST_F(ClaudeUsageProviderTest, StreamedLinesOfOneMessageCountOnce) {
  // The message's largest counts: 100 + 40 and 300 + 9; what copies and repeats say adds nothing.
  const auto file = folder_ / "s.jsonl";
  claude_.append(file, line("u1", "m1", counts(100, 1)) + line("u2", "m1", counts(100, 1)));
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u1"));
  claude_.append(file, line("u3", "m1", counts(90, 40)));
  const auto grown = claude_.poll();
  ASSERT_THAT(turnIds(grown), ElementsAre("u3"));
  EXPECT_EQ(grown[0].inputTokens, 0);
  EXPECT_EQ(grown[0].outputTokens, 39);
  EXPECT_EQ(claude_.report()->sessionUsage.effectiveTotalTokens(), 130);
  claude_.append(file, line("u4", "m2", counts(300, 9)));
  // The same message id with another request is another message.
  std::string other = line("u5", "m2", counts(10, 0));
  other.replace(other.find("r1"), 2, "r2");
  claude_.append(file, other);
  (void)claude_.poll();
  EXPECT_EQ(claude_.counted().totalTokens, 140 + 309 + 10);
  claude_.restart();
  (void)claude_.poll();
  claude_.append(file, line("u6", "m1", counts(100, 45)) + line("u7", "m2", counts(300, 9)));
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u6"));
  EXPECT_EQ(claude_.counted().totalTokens, 145 + 309 + 10);
}

TEST_F(ClaudeUsageProviderTest, ForksAndCopiesCountOnceAlsoAfterARestart) {
  const std::string old = line("u1", "m1", counts(5, 1)) + line("u2", "m1", counts(5, 8)) +
                          R"({"type":"assistant","uuid":"u3","message":{"usage":{"input_tokens":4}}})"
                          "\n";
  claude_.append(folder_ / "old.jsonl", old);
  const auto fork = [&](const std::string& name, const std::string& more) {
    std::string copied = old;
    for (auto at = copied.find(R"("S")"); at != std::string::npos; at = copied.find(R"("S")")) {
      copied.replace(at, 3, R"("F")");
    }
    claude_.append(folder_ / name, copied + more);
  };
  fork("fork1.jsonl", "");
  (void)claude_.poll();
  EXPECT_EQ(claude_.counted().totalTokens, 5 + 8 + 4);
  claude_.restart();
  fork("fork2.jsonl", line("u4", "m2", counts(20, 2)));
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u4"));
  // A sub-agent's file has messages of its own.
  claude_.append(folder_ / "old/subagents/agent-1.jsonl", line("u5", "m3", counts(30, 3)));
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u5"));
  EXPECT_EQ(claude_.counted().totalTokens, 17 + 22 + 33);
}

TEST_F(ClaudeUsageProviderTest, TheFiveNewestFilesAndWhateverChanges) {
  for (int i = 0; i < 7; ++i) {
    claude_.append(folder_ / fmt::format("{}.jsonl", i), line(fmt::format("u{}", i), "", counts(1, 1)));
  }
  claude_.append(folder_ / "9.json", line("no", "", counts(1, 1)));
  claude_.append(folder_ / ".jsonl", line("no", "", counts(1, 1)));
  std::filesystem::create_directory_symlink(claude_.home() / ".claude", claude_.home() / folder_ / "circle");
  std::filesystem::create_symlink("0.jsonl", claude_.home() / folder_ / "link.jsonl");
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u6", "u5", "u4", "u3", "u2"));
  EXPECT_THAT(claude_.poll(), IsEmpty());
  // One that was too old counts from its beginning when it grows.
  claude_.append(folder_ / "0.jsonl", line("u7", "", counts(1, 1)));
  claude_.append("later.jsonl", line("no", "", counts(1, 1)));
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u0", "u7"));
  // More than five at once; and one becomes one of the newest without changing.
  for (int i = 0; i < 7; ++i) {
    claude_.append(folder_ / fmt::format("new/{}.jsonl", i), line(fmt::format("n{}", i), "", counts(1, 1)));
  }
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("n6", "n5", "n4", "n3", "n2", "n1", "n0"));
  std::filesystem::remove_all(claude_.home() / folder_ / "new");
  for (const char* name : {"6", "5"}) std::filesystem::remove(claude_.home() / folder_ / name += ".jsonl");
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u1"));
}

TEST_F(ClaudeUsageProviderTest, AskingForTheReportChangesNothingElse) {
  EXPECT_EQ(claude_.report(), std::nullopt);
  claude_.append(folder_ / "a.jsonl", line("u1", "m1", counts(5, 1)) + line("u2", "m1", counts(5, 8)));
  EXPECT_EQ(claude_.report()->sessionUsage.outputTokens, 8);
  EXPECT_THAT(turnIds(claude_.poll()), ElementsAre("u1", "u2"));
}

TEST_F(ClaudeUsageProviderTest, CallsBackOnItsQueueUntilItIsStopped) {
  claude_.append(folder_ / "a.jsonl", line("u1", "m1", counts(5, 1)));
  ClaudeUsageProvider provider(claude_.dependencies(), 0.01);
  std::promise<std::string> single;
  std::promise<std::size_t> batch;
  provider.startMonitoring([&](const UsageEvent& event) { single.set_value(event.turnId.value_or("")); },
                           [&](const std::vector<UsageEvent>& events) { batch.set_value(events.size()); });
  EXPECT_EQ(single.get_future().get(), "u1");
  EXPECT_EQ(batch.get_future().get(), 1);
  provider.stopMonitoring();
  EXPECT_EQ(claude_.world.sink->lines("usage.claude"),
            std::vector{"ClaudeUsageProvider active on " + (claude_.home() / ".claude/projects").string()});
  // A callback would break its promise a second time.
  claude_.append(folder_ / "a.jsonl", line("u2", "m2", counts(5, 1)));
  EXPECT_THAT(turnIds(provider.pollLatestEvents()), ElementsAre("u2"));
}

}  // namespace
}  // namespace kestrel
