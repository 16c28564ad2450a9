#include <cmath>
#include <gmock/gmock.h>

#include "KestrelCore/Presentation/DurationText.h"
#include "KestrelCore/Presentation/PopoverModel.h"
#include "KestrelCore/Usage/LowBudgetThreshold.h"

namespace kestrel {
namespace {

const Date kNow = Date::since1970(1'795'231'625);

HoldStatus holdWith(std::vector<HoldEvidence> evidence) {
  return holdStatus(kNow - 724, std::move(evidence));
}

TEST(DurationTextTest, SaysEachInItsUnits) {
  struct Case {
    double seconds;
    const char* exact;
    const char* rough;
  };
  for (const auto& [seconds, exact, rough] :
       {Case{-5, "0 s", "0 s"}, Case{std::nan(""), "0 s", "0 s"}, Case{59.9, "59 s", "59 s"},
        Case{724, "12 min 04 s", "12 min"}, Case{3590, "59 min 50 s", "1 h"}, Case{7800, "2 h 10 min", "2 h"},
        Case{3 * 86400.0, "72 h 00 min", "3 d"}}) {
    EXPECT_EQ(durationText(seconds), exact);
    EXPECT_EQ(roughDurationText(seconds), rough);
  }
  EXPECT_EQ(agoText(40), "40 s ago");
}

struct HeadlineCase {
  const char* name;
  WakeDecision decision;
  std::vector<HoldEvidence> evidence;
  const char* expected;
  Tone tone;
};

TEST(HeadlineModelTest, NeverShowsAsProtectionWhatIsNotInForce) {
  const auto hold = WakeDecision::hold("Codex CLI working", 1, true);
  const HoldEvidence held{"login manager", HoldKind::idle, HoldEvidenceState::held, ""};
  const HoldEvidence pending{"login manager", HoldKind::idle, HoldEvidenceState::pending, ""};
  const HoldEvidence refused{"login manager", HoldKind::idle, HoldEvidenceState::refused, "no"};
  const HoldEvidence lost{"login manager", HoldKind::idle, HoldEvidenceState::lost, ""};
  const HoldEvidence lid{"helper", HoldKind::lid, HoldEvidenceState::held, ""};
  const std::vector<HeadlineCase> cases{
      {"in force", hold, {held}, "Awake|Codex CLI working|for 12 min 04 s · lid hold off", Tone::normal},
      {"with lid", hold, {held, lid}, "Awake|Codex CLI working|for 12 min 04 s · lid hold on", Tone::normal},
      {"no service", hold, {}, "Not held yet|Wants to hold, but no power service answered|", Tone::bad},
      {"lid alone", hold, {lid}, "Not held yet|Wants to hold, but no power service answered|", Tone::bad},
      {"pending", hold, {pending, lid}, "Not held yet|Wants to hold|asking the login manager", Tone::muted},
      {"refused",
       hold,
       {refused, pending},
       "Not held yet|Wants to hold, but refused by the login manager (no); asking the login manager|",
       Tone::bad},
      {"lost", hold, {lost}, "Not held yet|The hold was lost: login manager is lost|", Tone::bad},
      {"released", WakeDecision::release("No agents"), {}, "Ready|No agents|", Tone::normal},
      {"paused",
       WakeDecision::blocked(SafetyBlock::paused),
       {},
       "Paused|Protection paused|29 min 12 s left",
       Tone::muted},
      {"heat",
       WakeDecision::blocked(SafetyBlock::thermalCritical),
       {},
       "Blocked|Thermal critical safety cutoff|",
       Tone::bad}};
  for (const auto& each : cases) {
    KestrelDisplayState display;
    display.decision = each.decision;
    display.elapsedProtectionSeconds = 724;
    display.pauseRemainingSeconds = 1752;
    const HoldStatus status = each.decision.isHolding() ? holdWith(each.evidence) : HoldStatus();
    for (const auto& entry : status.by) {
      if (entry.kind == HoldKind::lid) display.lidHoldActive = entry.state == HoldEvidenceState::held;
    }
    const HeadlineModel model = headlineModel(display, status);
    EXPECT_EQ(model.headline + "|" + model.reason + "|" + model.detail, each.expected) << each.name;
    EXPECT_EQ(model.tone, each.tone) << each.name;
  }
}

TEST(PowerStripModelTest, TellsUnknownFromNone) {
  using Snapshot = PowerSourceSnapshot;
  const auto power = [](std::optional<Snapshot> snapshot, bool isTooLow = false) {
    return powerStripModel({snapshot, std::nullopt, isTooLow}).power;
  };
  EXPECT_EQ(power({}), (PowerFigure{"Power unknown", Tone::muted, "No power service answered"}));
  EXPECT_EQ(power(Snapshot{{}, false, true, false, {}}), (PowerFigure{"No battery", Tone::normal, ""}));
  EXPECT_EQ(power(Snapshot{82, true, true, false, {}}), (PowerFigure{"82 % charging", Tone::good, ""}));
  EXPECT_EQ(power(Snapshot{12, false, false, false, 130}, true),
            (PowerFigure{"12 % on battery", Tone::bad, "2 h 10 min left"}));
  EXPECT_EQ(powerStripModel({{}, SystemThermalState::serious}).heat.tone, Tone::warn);
}

/// Of 200k tokens; the quota is filled again in two hours, or was an hour ago.
ProviderBudgetReport report(std::optional<std::int64_t> used, std::optional<double> quota,
                            double resetsIn = 7200) {
  ProviderBudgetReport made{
      .agentType = AgentType::codex, .cost = CostBudget{0.84, true}, .lastUpdated = kNow - 40};
  std::optional<double> context;
  if (used) {
    made.context = BudgetMetric<ContextBudget>::known(ContextBudget(200'000, *used), 1, "log");
    context = ContextBudget(200'000, *used).percentageRemaining();
  }
  if (quota) {
    made.quota = BudgetMetric<AccountQuotaBudget>::known(
        {.percentageRemaining = *quota, .usedPercent = 100 - *quota, .resetsAt = kNow + resetsIn}, 1, "log");
  }
  made.lowBudgetAlert = LowBudgetThreshold::evaluate(context, quota);
  return made;
}

TEST(PopoverRowTest, ShowsWhatRunsOutFirstAndNeverGuesses) {
  struct Case {
    const char* name;
    std::optional<ProviderBudgetReport> report;
    AgentState state;
    const char* gauge;
    const char* line;
    const char* alert;
  };
  auto nothing = report({}, {});
  nothing.cost.reset();
  const std::vector<Case> cases{
      {"no report", {}, AgentState::working, "", "No usage reported", ""},
      {"no figure", nothing, AgentState::working, "", "Context unavailable · Quota unavailable", ""},
      {"context", report(44'000, {}), AgentState::working, "78 % ctx", "156k context left · $0.84 est.", ""},
      {"quota", report(90'000, 34), AgentState::waiting, "34 % q",
       "Quota 34% left · resets in 2 h · 110k context left · $0.84 est.", ""},
      {"low quota", report(90'000, 8), AgentState::working, "8 % q", "resets in 2 h · $0.84 est.",
       "Critically Low"},
      {"low context", report(168'000, 60), AgentState::working, "16 % ctx",
       "32k context left · Quota 60% left · $0.84 est.", "Low"},
      {"at rest", report(44'000, {}), AgentState::completed, "78 % ctx", "Last session: 156k context left",
       ""},
      {"quota of the past", report(44'000, 3, -3600), AgentState::working, "78 % ctx",
       "156k context left · $0.84 est.", ""}};
  for (const auto& each : cases) {
    AgentFamilyPresentation family;
    family.aggregateState = each.state;
    family.budgetReport = each.report;
    const PopoverRow row = popoverRow(family, kNow);
    EXPECT_EQ(row.leftText, each.gauge) << each.name;
    EXPECT_EQ(row.left.has_value(), *each.gauge != '\0') << each.name;
    EXPECT_EQ(row.budgetLine, each.line) << each.name;
    EXPECT_EQ(row.alert, each.alert) << each.name;
    EXPECT_EQ(row.tone == Tone::accent, row.alert.empty()) << each.name;
  }
}

TEST(PopoverModelTest, TodayIsUnknownUntilItWasRead) {
  PopoverFacts facts;
  EXPECT_EQ(popoverModel(facts).today.line, "Usage is being read");
  EXPECT_FALSE(popoverModel(facts).today.hours);
  facts.today = UsageSummary();
  EXPECT_EQ(popoverModel(facts).today.line, "Nothing used yet");
  facts.today->totalTokens = 1'204'331;
  facts.today->sessionCount = 1;
  facts.today->turnCount = 41;
  EXPECT_EQ(popoverModel(facts).today.line, "1.2M tokens · 1 session");
  facts.today->estimatedCostUSD = 8.4021;
  facts.today->sessionCount = 5;
  EXPECT_EQ(popoverModel(facts).today.line, "1.2M tokens · $8.40 est. · 5 sessions");
  EXPECT_THAT(popoverModel(facts).today.details, testing::AllOf(testing::StartsWith("1,204,331 tokens today"),
                                                                testing::HasSubstr("$8.4021 estimated"),
                                                                testing::HasSubstr("5 sessions · 41 turns")));
}

}  // namespace
}  // namespace kestrel
