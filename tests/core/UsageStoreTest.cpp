#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <random>
#include <sstream>

#include "tests/core/UsageStoreFixture.h"

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

class UsageStoreTest : public testing::Test, public UsageStoreWorld {};

// Two events of one session, and what becomes of them on disk, written by hand.
const std::string kEvents =
    R"([{"id":"e1","agentType":"claude","sessionId":"s \"1\"","turnId":"t1","modelId":"m\u0001é","inputTokens":10,)"
    R"("outputTokens":-3,"cachedTokens":9223372036854775807,"cacheWriteTokens":0,"reasoningTokens":1,)"
    R"("totalTokens":8,"contextWindow":200000,"costEstimateUSD":0.1,"quotaRemainingPercent":99.5,)"
    R"("timestamp":785372345.25,"source":"x"},{"id":"e2","agentType":"codex","sessionId":"s \"1\"",)"
    R"("timestamp":753408000,"source":"y"}])";
const std::string kSessions =
    R"({"s \"1\"":{"id":"s \"1\"","agentType":"claude","modelId":"m\u0001é","startedAt":785372345.25,)"
    R"("lastActiveAt":785372345.25,"durationSeconds":0,"totalTokens":8,"inputTokens":10,"outputTokens":-3,)"
    R"("cachedTokens":9223372036854775807,"cacheWriteTokens":0,"reasoningTokens":1,"estimatedCostUSD":0.1,)"
    R"("contextWindow":200000,"quotaRemainingPercent":99.5}})";
const std::string kKeys = R"(["claude_s \"1\"_t1","codex_s \"1\"_1731715200.0_0"])";
const std::string kFile = R"({"schemaVersion":1,"events":)" + kEvents + R"(,"sessions":)" + kSessions +
                          R"(,"seenKeys":)" + kKeys + "}";

/// Read by the other decoder.
std::vector<UsageEvent> sampleEvents() {
  const Json events = parseJson(kEvents);
  return {decodeUsageEvent(events[0]), decodeUsageEvent(events[1])};
}

TEST_F(UsageStoreTest, WritesAndReadsBothLayoutsByteForByte) {
  EXPECT_EQ(store->record(sampleEvents()), 2U);
  EXPECT_EQ(content(file), kFile);
  open();
  EXPECT_EQ(logged("Loaded 2 usage events across 1 sessions from disk (schema v1)"), 1U);
  EXPECT_EQ(store->allEvents(), sampleEvents());
  EXPECT_EQ(store->record(sampleEvents()), 0U) << "the keys are known again";
  for (const std::string rest : {"", R"(,"schemaVersion":"1","more":[{"a":[null]},true])"}) {
    store.reset();
    world.sink->clear();
    writeFixture(file, "{ \"seenKeys\" : " + kKeys + ",\n\"sessions\":" + kSessions +
                           ",\"events\":" + kEvents + rest + "}\n");
    open();
    EXPECT_EQ(logged("Migrated 2 usage events from legacy schema to schema v1"), 1U);
    EXPECT_EQ(content(file), kFile);
    EXPECT_EQ(store->allEvents(), sampleEvents());
  }
}

TEST_F(UsageStoreTest, MovesAFileThatItCannotUseAsideOnceItHasAnother) {
  const std::string event = R"({"id":"e","agentType":"claude","sessionId":"s","timestamp":1,"source":"x")";
  std::vector<std::string> bad = {"", "\xEF\xBB\xBF" + kFile, kFile + std::string(1, '\0'), kFile + "x",
                                  kFile.substr(0, kFile.size() / 2)};
  std::string rest =
      R"(|},|,"id":"twice"}|,"costEstimateUSD":NaN}|,"costEstimateUSD":1e999}|,"inputTokens":1.5}|,"turnId":7}|)"
      R"(,"inputTokens":9223372036854775808}|"events":[],"sessions":{}|"events":[],"sessions":[],"seenKeys":[]|)"
      R"("events":[],"sessions":{"s":{}},"seenKeys":[]|"events":[],"sessions":{},"seenKeys":["a",]|)"
      R"("events":[],"sessions":{},"seenKeys":[1]|"events":[],"sessions":{},"seenKeys":[],"x":tru|)"
      R"("events":[],"sessions":{},"seenKeys":[],"events":[]|"events":[}],"sessions":{},"seenKeys":[]|)"
      ",\"turnId\":\"\xC3\"}|"
      R"(,"modelId":")" +
      std::string(70'000, 'x') + R"("}|,"more":)" + std::string(70, '[') + std::string(70, ']') +
      R"(}|,"more":)" + std::string(3'000'000, '[') + R"(|,"inputTokens":9223372036854775807},)" + event +
      R"(,"inputTokens":1})";
  for (std::istringstream lines(rest); std::getline(lines, rest, '|');) {
    const bool isMembers = rest.starts_with('"');
    bad.push_back(isMembers ? "{" + rest + "}"
                            : R"({"seenKeys":[],"sessions":{},"events":[)" + event + rest + "]}");
  }
  for (const std::string& text : bad) {
    SCOPED_TRACE(text.substr(0, 200));
    store.reset();
    std::filesystem::remove(file.string() + aside);
    writeFixture(file, text);
    world.sink->clear();
    open();
    EXPECT_EQ(store->eventCount() + world.sink->lines().size(), 0U);
    EXPECT_EQ(content(file), text);
    EXPECT_TRUE(store->record(turn("t")));
    EXPECT_EQ(content(file.string() + aside), text);
    EXPECT_EQ(logged("could not be read and was moved aside to " + file.string() + aside), 1U);
    EXPECT_EQ(onDisk(), std::vector{turn("t")});
  }
  store.reset();
  std::filesystem::resize_file(file, std::uintmax_t{1} << 31);  // Sparse.
  open();
  EXPECT_EQ(store->eventCount(), 0U);
}

TEST_F(UsageStoreTest, FoldsEventsIntoTheirSession) {
  auto event = turn("t1", 10);
  event.modelId = "first";
  event.costEstimateUSD = 0.5;
  auto late = turn("t2", 5);
  late.modelId = "second";
  late.timestamp = event.timestamp - 100;
  auto bare = turn("", 0);  // Its time and total are the key.
  bare.outputTokens = bare.totalTokens = std::nullopt;
  bare.quotaRemainingPercent = 40;
  bare.timestamp = event.timestamp + 60;
  EXPECT_EQ(store->record(std::vector{event, event, late, bare, bare}), 3U);
  const auto session = store->recentSessions(1).at(0);
  EXPECT_EQ(session.modelId.value() + " " + std::to_string(session.totalTokens), "first 15");
  EXPECT_EQ(session.startedAt, event.timestamp);
  EXPECT_EQ(session.lastActiveAt - session.startedAt + session.durationSeconds, 120);
  EXPECT_EQ(*session.estimatedCostUSD + *session.quotaRemainingPercent, 40.5);
  EXPECT_TRUE(store->hasTurn(AgentType::claude, "t2"));
  EXPECT_FALSE(store->hasTurn(AgentType::codex, "t2") || store->hasTurn(AgentType::claude, ""));
  EXPECT_EQ(parseJson(store->exportPrivacySafeJSON())["todaySummary"]["totalTokens"], 15);
  // And refuses what could not be added up or written.
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  ASSERT_TRUE(store->record(turn("t", kMost - 50)));
  std::vector<UsageEvent> bad(6, turn("bad", 1));
  bad[0] = turn("bad", 51);
  bad[1].inputTokens = std::numeric_limits<std::int64_t>::min();
  bad[2].timestamp = Date::sinceReferenceDate(std::nan(""));
  bad[3].costEstimateUSD = std::numeric_limits<double>::infinity();
  bad[4].modelId = std::string(70'000, 'x');
  bad[5].totalTokens = std::nullopt;
  bad[5].inputTokens = kMost;
  EXPECT_EQ(store->record(bad), 0U);
  EXPECT_EQ(logged("Refused a usage event of claude"), bad.size());
  EXPECT_TRUE(store->record(turn("bad", 1))) << "its key was not taken by what was refused";
  EXPECT_TRUE(store->record(turn("caf\xE9", 0)));
  EXPECT_FALSE(store->record(turn("caf\xE9", 0)));
  EXPECT_EQ(onDisk().back().turnId, "caf?");
}

TEST_F(UsageStoreTest, TodayFollowsMidnightTheZoneAndTheClock) {
  ::setenv("TZ", "UTC", 1);
  const Date noon = *parseISO8601("2026-11-21T12:00:00Z");
  world.clock->set(noon);
  for (const auto& [hours, output] : {std::pair(-13, 1), {-12, 10}, {-11, 100}, {30, 1000}, {-14, 10'000}}) {
    auto event = turn(std::to_string(hours), output);
    event.timestamp = noon + hours * 3600.0;
    ASSERT_TRUE(store->record(event));
    if (hours == -12) (void)store->todaySummary();  // The sums of the day are kept from here on.
  }
  const auto today = [&] { return store->todaySummary().outputTokens; };
  EXPECT_EQ(today(), 1110) << "also what lies ahead, and nothing that came late for yesterday";
  const auto days = store->daySummaries(3);
  EXPECT_EQ(days.at(0).day, "2026-11-21");
  EXPECT_EQ(days[0].summary, store->todaySummary());
  EXPECT_EQ(days.at(1).summary.outputTokens, 10'001);
  EXPECT_EQ(store->summary(noon - 12 * 3600, noon - 11 * 3600).outputTokens, 110) << "both ends included";
  ::setenv("TZ", "<+02>-2", 1);
  EXPECT_EQ(today(), 11'111) << "another zone";
  world.clock->advance(24 * 3600);
  EXPECT_EQ(today(), 1000) << "the next day";
  world.clock->set(noon);
  EXPECT_EQ(today(), 11'111) << "the clock was set back";
  // Zone, instant, start of its day. No midnight, and two of them.
  const SystemLocalCalendar calendar;
  const std::array<const char*, 3> cases[] = {
      {"America/Sao_Paulo", "2018-11-04T20:00:00.000Z", "2018-11-04T03:00:00.000Z"},
      {"America/Havana", "2026-11-01T20:00:00.000Z", "2026-11-01T04:00:00.000Z"}};
  for (const auto& [zone, at, start] : cases) {
    ::setenv("TZ", zone, 1);
    EXPECT_EQ(iso8601(calendar.startOfDay(*parseISO8601(at))), start) << zone;
  }
  ::unsetenv("TZ");
  EXPECT_TRUE(std::isfinite(calendar.startOfDay(Date::since1970(1e300)).secondsSince1970()));
}

TEST_F(UsageStoreTest, HoldsWhatItWasToldThroughAnyHistory) {
  std::mt19937 random(1);
  std::vector<UsageEvent> model;
  for (int i = 0; i < 300; ++i) {
    auto event = turn(std::to_string(random() % 200), static_cast<std::int64_t>(random() % 90) - 30);
    event.agentType = static_cast<AgentType>(random() % 2);
    event.modelId = std::string(random() % 60'000, 'm');
    if (random() % 3 == 0) event.turnId.reset();
    event.timestamp = event.timestamp + static_cast<double>(random() % 100) / 9;
    const auto same = [&](const auto& old) { return old.deduplicationKey() == event.deduplicationKey(); };
    const bool isNew = std::ranges::none_of(model, same);
    if (isNew) model.push_back(event);
    ASSERT_EQ(store->record(event), isNew);
    if (i % 30 == 0) open();
  }
  EXPECT_EQ(onDisk(), model);
}

}  // namespace
}  // namespace kestrel
