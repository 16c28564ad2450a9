#include "screenshots/Sessions.h"

#include <array>
#include <cstddef>
#include <fmt/format.h>

#include "KestrelCore/Usage/LowBudgetThreshold.h"

namespace kestrel {
namespace {

constexpr std::int64_t kWindow = 200'000;
constexpr double kHour = 3600;

void playDay(Stage& stage) {
  constexpr std::array<int, 9> kThousands{12, 0, 4, 60, 210, 480, 150, 190, 98};
  for (std::size_t i = 0; i < kThousands.size(); ++i) {
    const auto hoursAgo = static_cast<double>(kThousands.size() - 1 - i);
    if (kThousands[i] == 0) continue;
    const auto agent = i % 2 == 0 ? AgentType::claude : AgentType::codex;
    stage.use(agent, kThousands[i] * 1000 + 37, kThousands[i] * 0.007, hoursAgo * kHour + 60,
              fmt::format("s{}", i % 5));
  }
}

}  // namespace

ProviderBudgetReport reportOf(AgentType agent, std::optional<std::int64_t> contextUsed,
                              std::optional<double> quotaLeft, std::optional<double> costUSD, Date now) {
  ProviderBudgetReport report{.agentType = agent};
  std::optional<double> contextLeft;
  if (contextUsed) {
    const ContextBudget budget(kWindow, *contextUsed);
    contextLeft = budget.percentageRemaining();
    report.context = BudgetMetric<ContextBudget>::known(budget, 1, "log");
  }
  if (quotaLeft) {
    report.quota = BudgetMetric<AccountQuotaBudget>::known(
        {.percentageRemaining = *quotaLeft, .usedPercent = 100 - *quotaLeft, .resetsAt = now + 2.2 * kHour},
        1, "log");
  }
  if (costUSD) report.cost = CostBudget{*costUSD, true};
  report.lowBudgetAlert = LowBudgetThreshold::evaluate(contextLeft, quotaLeft);
  return report;
}

void playTwoAgents(Stage& stage) {
  // In the afternoon, with a day behind it.
  stage.clock().set(stage.clock().now() + 11 * kHour);
  playDay(stage);
  stage.startUsage();
  const Date now = stage.clock().now();
  stage.report(reportOf(AgentType::claude, 44'000, std::nullopt, 1.2, now));
  stage.report(reportOf(AgentType::codex, 90'000, 34, 0.84, now));
  stage.machine().powerAssertions->setEvidence(
      std::vector<HoldEvidence>{{"login manager", HoldKind::idle, HoldEvidenceState::held, "1"},
                                {"helper", HoldKind::lid, HoldEvidenceState::held, ""}});
  stage.hook("c1", AgentType::claude, AgentState::working, "/home/u/p");
  stage.clock().advance(724);
  stage.hook("c1", AgentType::claude, AgentState::working, "/home/u/p");
  stage.hook("c2", AgentType::claude, AgentState::working, "/home/u/q");
  stage.hook("x1", AgentType::codex, AgentState::working, "/home/u/p");
  stage.process(AgentType::cursor, 4711);
  stage.app().evaluate();
}

void playTwoHundredSessions(Stage& stage) {
  playTwoAgents(stage);
  constexpr std::array kStates{AgentState::working, AgentState::waiting, AgentState::completed,
                               AgentState::error, AgentState::idle};
  const Date now = stage.clock().now();
  for (int i = 0; i < 200; ++i) {
    const auto agent = static_cast<AgentType>(i % 9);
    // Each family has one prevailing state.
    stage.hook(fmt::format("many{}", i), agent, kStates[static_cast<std::size_t>(i % 9) % kStates.size()],
               fmt::format("/home/u/p{}", i % 4));
  }
  stage.report(reportOf(AgentType::gemini, 184'000, std::nullopt, 12.4, now));
  stage.report(reportOf(AgentType::opencode, std::nullopt, 3, 0.002, now));
  stage.report(reportOf(AgentType::antigravity, std::nullopt, std::nullopt, std::nullopt, now));
  stage.app().evaluate();
}

}  // namespace kestrel
