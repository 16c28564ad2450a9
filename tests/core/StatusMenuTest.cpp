#include <gmock/gmock.h>
#include <string>

#include "KestrelCore/Presentation/StatusMenu.h"
#include "KestrelCore/Presentation/StatusTooltip.h"

namespace kestrel {
namespace {

std::string drawn(const std::vector<StatusMenuItem>& menu) {
  std::string text;
  for (const auto& item : menu)
    text += item.isSeparator() ? "--\n" : (item.isEnabled() ? "" : "(disabled) ") + item.title + "\n";
  return text;
}

const auto kHold = WakeDecision::hold("Claude Code, Codex CLI working", 3, true);
const auto kPaused = WakeDecision::blocked(SafetyBlock::paused);
const auto kRelease = WakeDecision::release("No active agent sessions");

TEST(StatusMenu, OffersWhatCanBeDoneNow) {
  EXPECT_EQ(drawn(statusMenu(kHold, 2, true, false)),
            "(disabled) Kestrel — Awake: Claude Code, Codex CLI working (2 active)\n--\nOpen Kestrel…\n--\n"
            "Pause for 30 Minutes\nPause for 1 Hour\nDisable Kestrel\n--\nSettings…\n--\nQuit Kestrel\n");
  EXPECT_EQ(drawn(statusMenu(kPaused, 2, false, true)),
            "(disabled) Kestrel — Blocked: Protection paused\n--\nOpen Kestrel…\n--\nResume Protection\n"
            "Pause for 30 Minutes\nPause for 1 Hour\nEnable Kestrel\n--\nSettings…\n--\nQuit Kestrel\n");
  EXPECT_EQ(statusMenu(kRelease, 0, true, false).front().title, "Kestrel — Ready: No active agent sessions");
}

TEST(StatusTooltip, TellsTheDecisionAndWhatIsLeftOfEachBudget) {
  AgentFamilyPresentation reporting;
  reporting.displayName = "Claude Code";
  reporting.aggregateState = AgentState::working;
  reporting.budgetReport.emplace();
  reporting.budgetReport->context =
      BudgetMetric<ContextBudget>::known(ContextBudget(200000, 156000), 1, "log");
  AgentFamilyPresentation scanned;
  scanned.displayName = "Cursor";
  scanned.processCount = 1;
  AgentFamilyPresentation silent;
  silent.displayName = "Aider";
  EXPECT_EQ(statusTooltip(kHold, 3, {reporting, scanned, silent}),
            "Kestrel: Awake (3 active) — Claude Code, Codex CLI working\n"
            "Claude Code: 44k context left · 22% remaining\nCursor: 1 process detected · Idle\nAider");
  EXPECT_EQ(statusTooltip(kPaused, 3, {}), "Kestrel: Blocked — Protection paused");
  EXPECT_EQ(statusTooltip(kRelease, 0, {}), "Kestrel: Ready — No active agent sessions");
}

}  // namespace
}  // namespace kestrel
