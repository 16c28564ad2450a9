#include <cstdlib>

#include "tests/core/AppCoordinatorFixture.h"
#include "tests/core/Soon.h"

#include "KestrelCore/Control/SettingsCatalog.h"
#include "KestrelCore/Presentation/OnboardingModel.h"
#include "KestrelCore/Presentation/OverviewModel.h"
#include "KestrelCore/Presentation/PowerModel.h"
#include "KestrelCore/Presentation/SettingsModel.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

constexpr Date kNow = ManualClock::kDefaultStart;

class OverviewModelTest : public AppCoordinatorFixture {
 protected:
  OverviewModelTest() { ::setenv("TZ", "UTC", 1); }
  ~OverviewModelTest() override { ::unsetenv("TZ"); }
  std::string figure(std::size_t index) const {
    const auto figure = overviewModel(facts_).figures.at(index);
    return figure.value + " " + figure.caption;
  }
  const SystemLocalCalendar calendar_;
  DismissedAlerts dismissed_;
  OverviewFacts facts_ = overviewFacts(*app_, calendar_, dismissed_);
};

TEST_F(OverviewModelTest, FiguresAreExactOrSayWhyThereAreNone) {
  EXPECT_EQ(figure(2) + ", " + figure(3), "– Usage is being read, – Usage is being read");
  facts_.popover.today = UsageSummary{};
  EXPECT_EQ(figure(3), "$0.00 cost today, estimated");
  facts_.popover.today->turnCount = 3;
  EXPECT_EQ(figure(3), "– cost unavailable") << "used, and no price is known";
  app_->start();
  hook("s", AgentState::working);
  executor_.advance(65);
  facts_ = overviewFacts(*app_, calendar_, dismissed_);
  EXPECT_EQ(figure(0) + ", " + figure(1), "1 min 05 s held today, 1 active agent");
}

TEST_F(OverviewModelTest, TheBandCoversADayWithoutGaps) {
  Timeline timeline;
  for (int second = -7200; second <= -3600; ++second)
    (void)timeline.record(TimelineKind::held, "a", kNow + second);
  const TimelineBand band = timelineBand(timeline, calendar_, kNow);
  std::string text;
  for (const auto& [kind, start, width, tooltip] : band.segments)
    text += fmt::format("{:.3f} {:.3f} {}\n", start, start + width, tooltip);
  for (const auto& mark : band.marks) text += fmt::format("{:.3f} {}, ", mark.position, mark.text);
  EXPECT_EQ(
      text,
      "0.000 0.917 Unknown 03:27 to 01:27 (22 h 00 min): Kestrel was not running, or the computer slept\n"
      "0.917 0.958 Held 01:27 to 02:27 (1 h 00 min): a\n"
      "0.958 1.000 Unknown 02:27 to 03:27 (1 h 00 min): Kestrel was not running, or the computer slept\n"
      "0.106 06:00, 0.356 12:00, 0.606 18:00, 0.856 00:00, 1.000 now, ");
}

TEST_F(OverviewModelTest, AnAlertStaysAwayUntilItsLevelChanges) {
  const AccountQuotaBudget quota{.percentageRemaining = 12, .resetsAt = kNow + 7800};
  ProviderBudgetReport report{.agentType = AgentType::codex, .lastUpdated = kNow - 40};
  report.quota = BudgetMetric<AccountQuotaBudget>::known(quota, 1, "x");
  report.lowBudgetAlert = LowBudgetAlert{LowBudgetLevel::warning, LowBudgetMetricType::quota, 12, "low"};
  std::map<AgentType, ProviderBudgetReport> reports;
  facts_.reports = &reports;
  const auto shown = [&](LowBudgetLevel level) {
    report.lowBudgetAlert->level = level;
    reports = {{AgentType::codex, report}};
    dismissed_.update({{AgentType::codex, *report.lowBudgetAlert}});
    return overviewModel(facts_).alerts;
  };
  const auto alert = shown(LowBudgetLevel::warning).at(0);
  EXPECT_EQ(alert.title + " · " + alert.detail, "Codex CLI: low · resets in 2 h 10 min · measured 40 s ago");
  dismissed_.dismiss(alert.key);
  EXPECT_TRUE(shown(LowBudgetLevel::warning).empty());
  EXPECT_EQ(shown(LowBudgetLevel::critical).size(), 1U) << "worse";
}

class SettingsModelTest : public AppCoordinatorFixture {
 protected:
  SettingRow row(const std::string& key) { return *settingsModel(settingsFacts(*app_)).find(key); }
};

TEST_F(SettingsModelTest, HasEverySettingOnceAndSetsNothingElse) {
  std::multiset<std::string> keys;
  for (const auto& group : settingsModel(settingsFacts(*app_)).groups) {
    for (const auto& setting : group.rows) keys.insert(setting.key);
  }
  std::multiset<std::string> expected;
  Json report = settingsReport(settings_);
  for (const auto& [key, value] : report.items()) expected.insert(key);
  ASSERT_EQ(keys, expected);
  for (const auto& key : powerModel(powerFacts(*app_)).settingKeys) EXPECT_EQ(keys.count(key), 1U) << key;
  settings_.setHasCompletedOnboarding(true);
  for (const auto& key : keys) {
    const SettingRow before = row(key);
    report = settingsReport(settings_);
    const bool isNumber = before.kind == SettingKind::slider || before.kind == SettingKind::duration;
    EXPECT_TRUE(
        applySetting(*app_, key, isNumber ? SettingValue(before.minimum) : SettingValue(!before.isOn)));
    EXPECT_EQ(row(key).value, before.minimum) << key;
    EXPECT_NE(settingsReport(settings_)[key], report[key]) << key;
    report[key] = settingsReport(settings_)[key];
    EXPECT_EQ(settingsReport(settings_), report) << key << " changed something else";
  }
}

TEST_F(SettingsModelTest, TellsWhatTheSystemSays) {
  EXPECT_TRUE(applySetting(*app_, "launchAtLogin", true));
  machine_.loginItem->setFailure("no");
  EXPECT_FALSE(applySetting(*app_, "launchAtLogin", false));
  EXPECT_EQ(row("launchAtLogin").statusText, "Enabled") << "as the system has it";
  EXPECT_TRUE(applySetting(*app_, "pauseUntil", true));
  EXPECT_EQ(row("pauseUntil").statusText, "Paused, 30 min 00 s left");
}

class OnboardingTest : public AppCoordinatorFixture {
 protected:
  /// Whether the trial gets there, or its session does.
  bool reaches(OnboardingTrial::Step step) {
    return soon(executor_, [&] { return trial_.report().get().step == step; });
  }
  bool reaches(AgentState state) {
    return soon(executor_, [&] {
      const auto sessions = app_->agentCoordinator().sessions();
      return !sessions->empty() && sessions->begin()->second->state == state;
    });
  }
  void answer(HoldEvidenceState state) const {
    machine_.powerAssertions->setEvidence(
        std::vector<HoldEvidence>{{"login manager", HoldKind::idle, state, ""}});
  }
  [[nodiscard]] std::string trialText() const {
    const std::optional<AgentInspection::Result> unknown;
    OnboardingFacts facts;
    facts.inspection = &unknown;
    facts.trial = trial_.report().get();
    return onboardingModel(facts).pages.at(3).text;
  }
  OnboardingTrial trial_{*app_, executor_};
};

TEST_F(OnboardingTest, TheHoldArrivesThroughTheRealSocket) {
  trial_.start();
  ASSERT_TRUE(reaches(OnboardingTrial::Step::failed)) << "nothing listens before the start";
  app_->start();
  answer(HoldEvidenceState::pending);
  trial_.start();
  ASSERT_TRUE(reaches(AgentState::working) && reaches(OnboardingTrial::Step::accepted));
  executor_.advance(2);
  EXPECT_EQ(trial_.report().get().step, OnboardingTrial::Step::accepted) << "asked for is not held";
  answer(HoldEvidenceState::held);
  executor_.advance(1);
  EXPECT_EQ(trialText(), "It works: this computer is held awake, in force (login manager). That took 3.0 s.");
  executor_.advance(OnboardingTrial::kPatienceSeconds - 3);
  EXPECT_FALSE(trial_.isUnderWay());
  EXPECT_TRUE(reaches(AgentState::completed));
}

TEST_F(OnboardingTest, SaysWhyNothingIsHeld) {
  app_->start();
  answer(HoldEvidenceState::refused);
  trial_.start();
  ASSERT_TRUE(reaches(AgentState::working) && reaches(OnboardingTrial::Step::accepted));
  executor_.advance(OnboardingTrial::kPatienceSeconds);
  EXPECT_EQ(trialText(),
            "Kestrel took the event, but the system did not confirm the hold: refused by the login manager.");
  settings_.setMasterEnabled(false);
  trial_.start();
  ASSERT_TRUE(reaches(OnboardingTrial::Step::blocked));
  EXPECT_EQ(trialText(), "Kestrel took the event, but may not hold now: Master switch disabled.");
}

}  // namespace
}  // namespace kestrel
