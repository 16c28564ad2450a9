#include <gmock/gmock.h>

#include "tests/core/AppCoordinatorFixture.h"

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

using enum TimelineKind;

constexpr Date kNow = ManualClock::kDefaultStart;

/// "held 0-10 a, unknown 10-20 , ": in seconds since kNow.
std::string text(const std::vector<TimelineSpan>& spans) {
  std::string text;
  for (const auto& [kind, reason, begin, end] : spans)
    text += fmt::format("{} {}-{} {}, ", rawValue(kind), begin - kNow, end - kNow, reason);
  return text;
}

/// Records once a second.
void recordFor(Timeline& timeline, TimelineKind kind, const char* reason, int from, int to) {
  for (int second = from; second <= to; ++second) (void)timeline.record(kind, reason, kNow + second);
}

TEST(Timeline, GapsAreUnknownAndClocksMayJump) {
  Timeline timeline;
  recordFor(timeline, held, "a", 0, 10);
  const auto revision = timeline.revision();
  recordFor(timeline, held, "a", 11, 20);
  EXPECT_EQ(timeline.revision(), revision) << "nothing new";
  recordFor(timeline, blocked, "b", 30, 40);
  recordFor(timeline, blocked, "b", 100, 110);
  EXPECT_EQ(text(timeline.between(kNow - 5, kNow + 105)),
            "unknown -5-0 , held 0-30 a, blocked 30-40 b, unknown 40-100 , blocked 100-105 b, ");
  recordFor(timeline, released, "c", 35, 50);
  EXPECT_EQ(text(timeline.spans()), "held 0-30 a, blocked 30-35 b, released 35-50 c, ") << "set back";
  EXPECT_EQ(text(timeline.between(kNow + 40, kNow + 60)), "released 40-60 c, ")
      << "until it is recorded again";
  EXPECT_EQ(text(timeline.between(kNow + 40, kNow + 90)), "released 40-50 c, unknown 50-90 , ");
  recordFor(timeline, released, "c", 100'000, 100'000);
  EXPECT_EQ(text(timeline.spans()), "released 100000-100000 c, ") << "the others are older than a day";
}

TEST(Timeline, StaysSmallAndKeepsItsSums) {
  Timeline timeline;
  // Two held spans between blocked ones, which have no neighbour of their kind.
  for (int i = 0; i < 6000; ++i)
    (void)timeline.record(i % 3 == 0 ? blocked : held, i % 2 == 0 ? "a" : "b", kNow + i * 10);
  EXPECT_LE(timeline.spans().size(), Timeline::kMaximumSpans);
  const Date begin = timeline.spans().front().begin;
  const Date end = timeline.spans().back().end;
  EXPECT_NEAR(timeline.seconds(held, begin, end) / (end - begin), 2.0 / 3, 0.01);
}

TEST(Timeline, ReadsOnlyWhatCanBeTrue) {
  Timeline timeline;
  recordFor(timeline, held, "a \"b\"", -100, -50);
  recordFor(timeline, released, "c", -49, 0);
  EXPECT_EQ(Timeline::fromJson(timeline.toJson(), kNow).spans(), timeline.spans());
  Json list = Json::array();
  const std::pair<int, int> written[] = {{-200'000, -190'000}, {-90, -80}, {-85, -70}, {-60, -65},
                                         {-50, -40},           {-30, 10},  {20, 30}};
  for (const auto& [begin, end] : written)
    list.push_back({{"kind", "held"},
                    {"reason", ""},
                    {"begin", (kNow + begin).secondsSinceReferenceDate()},
                    {"end", (kNow + end).secondsSinceReferenceDate()}});
  const Timeline read = Timeline::fromJson(dumpJson({{"spans", list}}), kNow);
  EXPECT_EQ(text(read.spans()), "held -90--80 , held -50--40 , ");
  for (const char* bad : {"[]", "{}", R"({"spans":[1]})", R"({"spans":[{"kind":"x"}]})"})
    EXPECT_THROW((void)Timeline::fromJson(bad, kNow), DecodingError) << bad;
}

TEST_F(AppCoordinatorFixture, TheTimelineIsWrittenAtChangesOnceAMinuteAndAtTheEnd) {
  const auto file = TimelineRecorder::defaultFile(world_.directories());
  const auto onDisk = [&] { return readWholeFile(file, 1 << 20).value_or("none"); };
  writeFixture(file, "{");
  app_->start();
  EXPECT_EQ(world_.sink->count("it begins anew"), 1U);
  const std::string first = onDisk();
  executor_.advance(20);
  hook("s", AgentState::working);
  executor_.advance(30);
  hook("s", AgentState::idle);
  EXPECT_EQ(onDisk(), first) << "not a minute yet";
  executor_.advance(610);
  EXPECT_EQ(
      text(app_->timeline().spans()),
      "released 0-20 No active agent sessions, held 20-50 Claude Code working, held 50-80 Release debounce, "
      "released 80-660 No active agent sessions, ");
  const std::string last = onDisk();
  executor_.advance(600);
  EXPECT_EQ(onDisk(), last) << "nothing changed, so nothing was written";
  app_->stop();
  world_.clock->advance(3600);
  app_->start();
  EXPECT_THAT(text(app_->timeline().between(kNow, world_.clock->now())),
              testing::EndsWith("released 80-1260 No active agent sessions, unknown 1260-4860 , "));
}

}  // namespace
}  // namespace kestrel
