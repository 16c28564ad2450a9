#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include "KestrelCore/Presentation/AppearanceModel.h"
#include "KestrelCore/Presentation/BudgetModel.h"
#include "KestrelCore/Presentation/PowerModel.h"
#include "KestrelCore/Presentation/UsageSessionTable.h"
#include "KestrelPlatform/Simulated/ManualClock.h"

namespace kestrel {
namespace {

using enum AgentType;

constexpr Date kNow = ManualClock::kDefaultStart;
const SystemLocalCalendar kCalendar;

std::string text(const BudgetGauge& gauge) {
  return fmt::format("{} {}|{}|{}", gauge.value, gauge.caption, gauge.detail, gauge.confidence);
}

BudgetCard cardOf(const ProviderBudgetReport& report) {
  const std::map<AgentType, ProviderBudgetReport> reports{{report.agentType, report}};
  const std::vector<DayTokens> days;
  return budgetModel({kNow, &reports, std::nullopt, &days, &kCalendar}).cards.at(0);
}

TEST(BudgetModel, GaugesTellWhatIsLeftOrWhyNothingIsKnown) {
  ProviderBudgetReport report{.agentType = codex, .lastUpdated = kNow - 40, .source = "codex-log"};
  EXPECT_EQ(text(cardOf(report).context), "– Context unavailable||");
  report.context = BudgetMetric<ContextBudget>::known(ContextBudget(200'000, 44'000), 0.8, "x");
  EXPECT_EQ(text(cardOf(report).context), "78 % context left|156k of 200k tokens|estimated, 80 % sure");
  const std::tuple<double, double, const char*, double> quotas[] = {
      {12, 7800, "12 % quota left|resets in 2 h 10 min|measured", 0.12},
      {60, 0, "60 % quota left|reset since, no newer figure|stale", 0.6},
      {-5, 9, "-5 % quota left|resets in 9 s|measured", 0},
      {250, 9, "250 % quota left|resets in 9 s|measured", 1}};
  for (const auto& [percent, resetsIn, expected, remaining] : quotas) {
    const AccountQuotaBudget quota{.percentageRemaining = percent, .resetsAt = kNow + resetsIn};
    report.quota = BudgetMetric<AccountQuotaBudget>::known(quota, 1, "x");
    EXPECT_EQ(text(cardOf(report).quota), expected);
    EXPECT_EQ(cardOf(report).quota.remaining, remaining);
    EXPECT_EQ(cardOf(report).quota.level.has_value(), percent < 20) << percent;
  }
}

TEST(TokenChart, StacksTheAgentsAndTellsExactValues) {
  ::setenv("TZ", "UTC", 1);
  std::vector<DayTokens> days;
  for (int i = 13; i >= 0; --i) days.push_back({kNow - i * 86'400, {}, 0, {}});
  days[13] = {kNow, {{claude, 750'000}, {codex, 250'000}, {aider, -5}}, 999'995, 8.4};
  days[8].startsAt = kNow + 10 * 86'400;
  const TokenChart chart = tokenChart(days, kCalendar);
  EXPECT_EQ(chart.bars[13].pieces, (std::vector<TokenChartPiece>{{claude, 0, 0.75}, {codex, 0.75, 0.25}}));
  EXPECT_EQ(
      chart.bars[13].tooltip,
      "21 Nov\nClaude Code: 750,000\nCodex CLI: 250,000\nAider: -5\nTotal: 999,995 tokens · $8.40 est.");
  std::string labels;
  for (const auto& bar : chart.bars) labels += bar.label + ",";
  EXPECT_EQ(labels, "8 Nov,,,,12,,,,1 Dec,,,,,today,");
  ::unsetenv("TZ");
}

SessionUsageRecord session(const char* id, AgentType agent, std::optional<std::string> model, double age,
                           std::int64_t tokens, std::optional<double> cost) {
  return {id, agent, std::move(model), {}, kNow - age, 0, tokens, 0, 0, 0, 0, 0, cost, {}, {}};
}

TEST(UsageSessionTable, SortsByEachColumnAndTakesInWhatChanged) {
  using enum SessionColumn;
  auto c = session("c", codex, "m1", 3, 20, 1);
  const auto a = session("a", codex, "m2", 1, 10, 3), b = session("b", claude, {}, 2, 30, {});
  UsageSessionTable table;
  const auto keys = [&] {
    std::string text;
    for (std::size_t row = 0; row < table.rowCount(); ++row) text += table.key(row);
    return text;
  };
  table.load({a, b, c, session("d", claude, "m2", 4, 30, 2)});
  const std::tuple<SessionColumn, bool, const char*> cases[] = {
      {lastActive, true, "dcba"}, {tokens, false, "dbca"},    {agent, true, "dbca"},
      {tokens, true, "acdb"},     {model, true, "cadb"},      {model, false, "adcb"},
      {cost, true, "cdab"},       {lastActive, false, "abcd"}};
  for (const auto& [column, ascending, expected] : cases) {
    table.sortBy(column, ascending);
    EXPECT_EQ(keys(), expected) << UsageSessionTable::title(column) << ascending;
  }
  EXPECT_EQ(table.text(1, cost, kNow) + table.text(1, model, kNow), "Price unknownModel unknown");
  EXPECT_TRUE(table.refresh({a, b}));
  c.lastActiveAt = kNow;
  EXPECT_TRUE(table.refresh({c, session("e", claude, {}, 0.5, 1, {}), a}));
  EXPECT_EQ(keys(), "ceabd");
  EXPECT_FALSE(table.refresh({session("f", claude, {}, 0, 1, {})})) << "there may be more";
  EXPECT_TRUE(table.refresh({}));
  EXPECT_EQ(keys(), "") << "a reset";
}

TEST(PowerModel, DrawsTheBatteryWithItsFloor) {
  PowerFacts facts;
  EXPECT_EQ(powerModel(facts).battery.text, "Nothing tells of the power supply");
  facts.powerSource = "UPower";
  const std::tuple<PowerSourceSnapshot, const char*, Tone> cases[] = {
      {{82, true, true, false, {}}, "82 % · charging", Tone::good},
      {{15, false, false, false, 90}, "15 % · on battery · 1 h 30 min left", Tone::bad},
      {{18, false, false, false, {}}, "18 % · on battery", Tone::warn}};
  for (const auto& [power, text, tone] : cases) {
    facts.power = power;
    const BatteryBar expected{static_cast<double>(*power.batteryPercent) / 100,           0.15, 0.18, text,
                              "On battery, protection stops at 15 % and resumes at 18 %", tone};
    EXPECT_EQ(powerModel(facts).battery, expected) << text;
  }
}

TEST(PowerModel, TellsOfEachServiceWhatItSays) {
  PowerFacts facts;
  facts.decision = WakeDecision::hold("Claude Code working", 1, true);
  facts.hold = {HoldState::wanted, facts.now, {{"desk", HoldKind::idle, HoldEvidenceState::refused, "no"}}};
  const PowerModel model = powerModel(facts);
  EXPECT_EQ(model.hold.tone, Tone::warn) << "not confirmed";
  EXPECT_EQ(model.assertions.at(0), (AssertionRow{"desk", "Against idle sleep", "Refused", "no", Tone::bad}));
  EXPECT_TRUE(model.thermalLadder.empty()) << "no sensor, no ladder";
  EXPECT_EQ(model.thermal.text + "|" + model.lid.text, "Temperature unknown|Lid unknown");
}

TEST(AppearanceModel, CaptionsAreTheRatesCutToOneDecimal) {
  std::string captions;
  for (const auto& preview : appearanceModel().previews) captions += preview.caption + ",";
  EXPECT_EQ(captions, "Resting 1.0 FPS,Typing 4.5 FPS,Thinking 2.2 FPS,Celebrate 2.8 FPS,Alarmed 1.2 FPS,");
}

}  // namespace
}  // namespace kestrel
