#include <fmt/format.h>
#include <gtest/gtest.h>
#include <tuple>
#include <utility>

#include "KestrelCore/Presentation/AgentFamilyPresentation.h"

namespace kestrel {
namespace {

constexpr auto kHook = IntegrationType::lifecycleHook;
constexpr auto kScan = IntegrationType::process;

using Seen = std::tuple<AgentState, IntegrationType, std::optional<std::int32_t>>;

AgentSessionPtr sessionOf(const Seen& seen, std::optional<std::string> host = {}, int order = 0) {
  AgentSession session;
  session.id = std::to_string(order);
  session.agentType = AgentType::claude;
  std::tie(session.state, session.integrationType, session.pid) = seen;
  session.startedAt = Date::since1970(order > 3 ? 1 : 0);
  session.hostAppName = std::move(host);
  return std::make_shared<const AgentSession>(session);
}

TEST(AgentFamilyPresentation, CountsUnitsOfWorkAndProcesses) {
  using enum AgentState;
  const struct {
    std::vector<Seen> seen;
    const char* expected;
  } rows[] = {
      {{{working, kScan, 1}, {working, kScan, 2}}, "working 2 of 2: 2 sessions active"},
      {{{idle, kScan, 1}}, "idle 1 of 1: 1 process detected · Idle"},
      {{{unknown, kScan, 1}, {stale, kScan, 2}}, "idle 2 of 2: 2 processes detected · Idle"},
      {{{idle, kHook, {}}}, "idle 1 of 0: "},
      // The process that the hook reports for is not counted twice; another one is.
      {{{waiting, kHook, 1}, {idle, kScan, 1}}, "waiting 1 of 1: 1 session active"},
      {{{waiting, kHook, 1}, {working, kScan, 2}}, "working 2 of 2: 2 sessions active"},
      {{{completed, kHook, 1}, {error, kHook, 1}, {idle, kHook, {}}}, "error 3 of 1: 3 sessions active"},
      {{{completed, IntegrationType::plugin, {}}, {idle, IntegrationType::fallback, {}}},
       "completed 2 of 0: 2 sessions active"},
      {{{completed, IntegrationType::fallback, {}}}, "completed 0 of 0: 1 session active"},
  };
  for (const auto& [seen, expected] : rows) {
    std::vector<AgentSessionPtr> sessions;
    for (const auto& each : seen) sessions.push_back(sessionOf(each));
    const auto family = AgentFamilyPresentation::buildFamilies(sessions, {}).at(0);
    EXPECT_EQ(fmt::format("{} {} of {}: {}", rawValue(family.aggregateState), family.logicalSessionCount,
                          family.processCount, family.summarySubtitle()),
              expected);
  }
}

TEST(AgentFamilyPresentation, SubtitlesOfSessionsThatShareProcesses) {
  AgentFamilyPresentation family;
  family.aggregateState = AgentState::working;
  family.processCount = 5;
  EXPECT_EQ(family.summarySubtitle(), "1 session active (5 processes)");
  family.logicalSessionCount = 3;
  EXPECT_EQ(family.summarySubtitle(), "3 sessions active (5 processes)");
}

TEST(AgentFamilyPresentation, GroupsByFamilyAndHost) {
  const Seen working{AgentState::working, kHook, 1}, waiting{AgentState::waiting, kHook, 2};
  auto gemini = std::make_shared<AgentSession>();
  gemini->agentType = AgentType::gemini;
  std::vector<AgentSessionPtr> sessions{gemini, sessionOf(waiting)};
  for (const char* host : {"Zed", "", "Code", "Terminal"})
    sessions.push_back(sessionOf(working, host, static_cast<int>(sessions.size())));
  ProviderBudgetReport report;
  report.sessionUsage.outputTokens = 12'000;
  report.lowBudgetAlert = LowBudgetAlert{};
  const auto build = AgentFamilyPresentation::buildFamilies;
  const auto families = build(sessions, {{AgentType::claude, report}, {AgentType::codex, report}});
  ASSERT_EQ(families.size(), 2U);
  const auto& claude = families[0];
  EXPECT_EQ(claude.displayName + families[1].id, "Claude Codegemini");
  EXPECT_EQ(claude.workingSessionCount * 100 + claude.waitingSessionCount * 10 + claude.hostCount, 413U);
  std::string hosts;
  for (const auto& host : claude.hosts) {
    hosts += " " + host.id + ":";
    for (const auto& session : host.sessions) hosts += session->id;
  }
  EXPECT_EQ(hosts, " claude_Code:4 claude_Terminal:503 claude_Zed:2");
  EXPECT_EQ(claude.budgetSummaryLine(), report.actionableSummaryLine());
  EXPECT_TRUE(claude.lowBudgetAlert());
  EXPECT_EQ(families[1].budgetSummaryLine(), "");
  EXPECT_EQ(build({sessions[0]}, {{AgentType::gemini, report}})[0].budgetSummaryLine(),
            report.idleSummaryLine());
  // What is equal are the sessions, not their addresses.
  EXPECT_EQ(build({sessionOf(working)}, {}), build({sessionOf(working)}, {}));
  EXPECT_NE(build({sessionOf(working)}, {}), build({sessionOf(waiting)}, {}));
}

}  // namespace
}  // namespace kestrel
