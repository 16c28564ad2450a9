#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "KestrelCore/Policy/WakePolicyEngine.h"

namespace kestrel {
namespace {

constexpr Date kNow = Date::since1970(1'800'000'000);
using Context = PolicyEvaluationContext;

struct Session {
  AgentType type = AgentType::claude;
  AgentState state = AgentState::working;
  double age = 0;
};

std::shared_ptr<const SessionTable> table(const std::vector<Session>& sessions) {
  SessionTable result;
  for (const auto& given : sessions) {
    AgentSession session;
    session.id = "s" + std::to_string(result.size());
    session.agentType = given.type;
    session.state = given.state;
    session.lastEventAt = kNow - given.age;
    result[session.id] = std::make_shared<const AgentSession>(session);
  }
  return std::make_shared<const SessionTable>(std::move(result));
}

/// One Claude session at work on a half-full battery: a hold, unless a row changes something.
Context workingContext() {
  Context context;
  context.sessions = table({{}});
  context.powerSource = {50, false, false, false, {}};
  context.now = kNow;
  return context;
}

std::string evaluate(const Context& context) {
  return WakePolicyEngine().evaluate(context).statusDescription();
}

TEST(PolicyEngine, FirstSafetyRuleThatFiresWins) {
  Context context = workingContext();
  context.config.masterEnabled = false;
  context.config.onlyOnAC = true;
  context.config.manualHoldEnabled = true;
  context.powerSource.batteryPercent = 3;
  context.thermalState = SystemThermalState::critical;
  context.pauseUntil = kNow + 0.001;
  const struct {
    const char* expected;
    std::function<void()> cure;
  } rows[] = {
      {"Safety blocked: Master switch disabled", [&] { context.config.masterEnabled = true; }},
      {"Safety blocked: Protection paused", [&] { context.pauseUntil = kNow; }},
      {"Safety blocked: Thermal critical safety cutoff",
       [&] { context.thermalState = SystemThermalState::serious; }},
      {"Safety blocked: AC power disconnected (AC-only mode)", [&] { context.config.onlyOnAC = false; }},
      {"Safety blocked: Battery level below safety cutoff", [&] { context.powerSource.isOnAC = true; }},
      {"Active (1 working agent) — Manual hold requested", [] {}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(evaluate(context), row.expected);
    row.cure();
  }
}

TEST(PolicyEngine, BatteryFloorHasHysteresisAndNeedsARealBattery) {
  const struct {
    std::optional<std::int64_t> percent;
    bool wasBlocked;
    bool onAC;
    bool charging;
    bool blocked;
  } rows[] = {{15, false, false, false, true}, {16, false, false, false, false},
              {17, true, false, false, true},  {18, true, false, false, false},
              {5, true, true, false, false},   {5, true, false, true, false},
              {{}, true, false, false, false}};
  for (const auto& row : rows) {
    Context context = workingContext();
    context.powerSource = {row.percent, row.charging, row.onAC, false, {}};
    context.isCurrentlyBatteryBlocked = row.wasBlocked;
    EXPECT_EQ(WakePolicyEngine().evaluate(context).isBlocked(), row.blocked)
        << row.percent.value_or(-1) << (row.wasBlocked ? " blocked before" : "");
  }
}

TEST(PolicyEngine, CountsActiveSessionsThatAreNotStale) {
  using enum AgentType;
  using enum AgentState;
  const struct {
    std::vector<Session> sessions;
    const char* expected;
  } rows[] = {
      {{{claude, idle}, {claude, unknown}, {claude, completed}, {claude, error}, {claude, stale}},
       "Sleep enabled — No active agent sessions"},
      {{{codex, working, 900}}, "Active (1 working agent) — Codex CLI working"},
      {{{codex, working, 900.001}}, "Sleep enabled — No active agent sessions"},
      // A clock that was set back makes events lie in the future; they count.
      {{{codex, working, -3600}}, "Active (1 working agent) — Codex CLI working"},
      {{{codex}, {claude}, {claude, waiting}, {aider, idle}},
       "Active (3 working agents) — Claude Code, Codex CLI working"},
  };
  for (const auto& row : rows) {
    Context context = workingContext();
    context.sessions = table(row.sessions);
    EXPECT_EQ(evaluate(context), row.expected);
  }
}

TEST(PolicyEngine, HoldsThroughTheReleaseDebounce) {
  const std::string released = "Sleep enabled — No active agent sessions";
  const auto held = [](int seconds) {
    return "Active (0 working agents) — Release debounce (" + std::to_string(seconds) + "s)";
  };
  const struct {
    double elapsed;
    double debounce;
    std::string expected;
  } rows[] = {{10.2, 30, held(20)},   {0, 30, held(30)}, {29.999, 30, held(1)},       {30, 30, released},
              {-0.001, 30, released}, {0, 0, released},  {1, 1e9, held(999'999'999)}, {-1e300, 30, released}};
  for (const auto& row : rows) {
    Context context = workingContext();
    context.sessions = table({});
    context.config.releaseDebounceSeconds = row.debounce;
    context.lastActiveAgentStoppedAt = kNow - row.elapsed;
    EXPECT_EQ(evaluate(context), row.expected) << row.elapsed << " of " << row.debounce;
  }
}

TEST(PolicyEngine, ManualHoldWinsOverDebounceAndEveryHoldCopiesTheDeepFlag) {
  for (const bool deep : {true, false}) {
    Context context = workingContext();
    context.config.deepLidProtectionEnabled = deep;
    EXPECT_EQ(WakePolicyEngine().evaluate(context), WakeDecision::hold("Claude Code working", 1, deep));
    context.sessions = table({});
    context.lastActiveAgentStoppedAt = kNow;
    EXPECT_EQ(WakePolicyEngine().evaluate(context), WakeDecision::hold("Release debounce (30s)", 0, deep));
    context.config.manualHoldEnabled = true;
    EXPECT_EQ(WakePolicyEngine().evaluate(context), WakeDecision::hold("Manual hold requested", 0, deep));
  }
}

}  // namespace
}  // namespace kestrel
