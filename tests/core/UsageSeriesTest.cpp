#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/core/UsageStoreFixture.h"

namespace kestrel {
namespace {

class UsageSeriesTest : public testing::Test, protected UsageStoreWorld {
 protected:
  ~UsageSeriesTest() override { ::unsetenv("TZ"); }
  void moveTo(const char* zone, const char* at) const {
    ::setenv("TZ", zone, 1);
    world.clock->set(*parseISO8601(at));
  }
  /// "20T22:30 7 ": times within the month of the clock, and tokens.
  void record(const std::string& events, AgentType agent = AgentType::claude) {
    std::istringstream words(events);
    std::int64_t tokens = 0;
    for (std::string at; words >> at >> tokens;) {
      auto event = turn(at, tokens);
      event.timestamp = *parseISO8601(iso8601(world.clock->now()).substr(0, 8) + at + ":00Z");
      event.agentType = agent;
      ASSERT_TRUE(store->record(event));
    }
  }
  /// "2:7 14:30 ": hours with tokens.
  std::string hours() {
    std::string text;
    const HourlyTokens hours = store->series().hours();
    for (std::size_t i = 0; i < hours.size(); ++i) text += hours[i] ? fmt::format("{}:{} ", i, hours[i]) : "";
    return text;
  }
  std::string days() {
    std::string text;
    for (const UsageSeries series = store->series(); const auto& day : series.days())
      text += fmt::format("{} ", day.totalTokens);
    return text;
  }
};

TEST_F(UsageSeriesTest, HoursAreThoseOfTheClockOnTheWall) {
  using Row = std::array<const char*, 4>;  // Zone, now, events, hours.
  for (const auto& [zone, now, events, expected] :
       {Row{"UTC", "2026-11-21T12:00:00Z", "20T23:59 1 21T00:00 2 21T23:59 4 22T00:00 8", "0:2 23:4 "},
        Row{"Asia/Kathmandu", "2026-11-21T12:00:00Z", "21T00:14 1 21T00:15 2", "5:1 6:2 "},
        // Two o'clock is left out, comes twice; the clock goes back from midnight to eleven.
        Row{"Europe/Berlin", "2026-03-29T12:00:00Z", "29T00:59 1 29T01:00 2 29T21:59 4", "1:1 3:2 23:4 "},
        Row{"Europe/Berlin", "2026-10-25T12:00:00Z", "25T00:30 1 25T01:30 2 25T22:59 4", "2:3 23:4 "},
        Row{"America/Sao_Paulo", "2018-02-17T12:00:00Z", "18T02:30 1 18T03:00 2", "23:1 "}}) {
    moveTo(zone, now);
    store->resetStore();
    record(events);
    EXPECT_EQ(hours(), expected) << zone << " " << now;
  }
}

TEST_F(UsageSeriesTest, DaysFollowMidnightTheZoneAndTheClock) {
  moveTo("UTC", "2026-11-21T12:00:00Z");
  record("07T23:00 1000 08T00:00 5 21T01:00 30 24T00:00 100");
  record("20T22:30 7 21T02:00 4", AgentType::codex);
  const std::string noon = "5 0 0 0 0 0 0 0 0 0 0 0 7 134 ";
  EXPECT_EQ(days(), noon) << "what lies ahead counts for today";
  const std::map<AgentType, std::int64_t> byAgent{{AgentType::claude, 130}, {AgentType::codex, 4}};
  const DayTokens today{*parseISO8601("2026-11-21T00:00:00Z"), byAgent, 134, std::nullopt};
  EXPECT_EQ(store->series().days().back(), today);
  open();
  EXPECT_EQ(days(), noon) << "loaded";
  ::setenv("TZ", "<+02>-2", 1);
  EXPECT_EQ(days(), "1005 0 0 0 0 0 0 0 0 0 0 0 0 141 ") << "the evening before is today";
  EXPECT_EQ(hours(), "0:7 3:30 4:4 ");
  moveTo("UTC", "2026-11-22T00:00:00Z");
  EXPECT_EQ(days(), "0 0 0 0 0 0 0 0 0 0 0 7 34 100 ");
  moveTo("UTC", "2026-11-21T12:00:00Z");
  EXPECT_EQ(days(), noon) << "the clock was set back";
}

}  // namespace
}  // namespace kestrel
