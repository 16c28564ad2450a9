#include <fmt/format.h>

#include "screenshots/Scene.h"
#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"

#include "KestrelApp/MenuBarContentView.h"

namespace kestrel {
namespace {

using Play = std::function<void(Stage&)>;

Scene popover(const std::string& name, const Stage::Machine& machine, const Play& play) {
  return {"popover-" + name, [machine, play] {
            auto views = std::make_shared<ViewStage>(machine);
            play(views->stage());
            return Scenery{views, std::make_unique<MenuBarContentView>(views->context())};
          }};
}

constexpr Stage::Machine kCharging{.batteryPercent = 82, .isOnAC = true, .isCharging = true};

void refuse(Stage& stage, const std::string& why) {
  stage.machine().powerAssertions->setEvidence(
      std::vector<HoldEvidence>{{"login manager", HoldKind::idle, HoldEvidenceState::refused, why}});
  stage.app().evaluate();
}

void nameAtLength(Stage& stage, const std::string& name) {
  playTwoAgents(stage);
  const Date now = stage.clock().now();
  auto report = reportOf(AgentType::gemini, std::nullopt, std::nullopt, std::nullopt, now);
  report.context = BudgetMetric<ContextBudget>::unavailable(name);
  stage.report(report);
  stage.hook("g", AgentType::gemini, AgentState::waiting, name);
  refuse(stage, name);
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

}  // namespace

Scenes popoverScenes() {
  return {
      popover("being-read", {}, [](Stage&) {}),
      popover("empty", {}, [](Stage& stage) { stage.startUsage(); }),
      popover("two-agents", kCharging, playTwoAgents),
      popover("paused", kCharging,
              [](Stage& stage) {
                playTwoAgents(stage);
                stage.settings().pause(1752);
                stage.app().evaluate();
              }),
      popover("battery-low", {.batteryPercent = 12, .isOnAC = false, .isLowPowerMode = true, .heat = 2},
              playTwoAgents),
      popover("switched-off", {.batteryPercent = 64, .isOnAC = true},
              [](Stage& stage) {
                playTwoAgents(stage);
                stage.settings().setMasterEnabled(false);
                stage.app().evaluate();
              }),
      popover("kept-awake", {.batteryPercent = 64, .isOnAC = true},
              [](Stage& stage) {
                playTwoAgents(stage);
                stage.settings().setManualHoldEnabled(true);
                stage.app().evaluate();
              }),
      popover("no-service", kCharging,
              [](Stage& stage) {
                playTwoAgents(stage);
                stage.machine().powerAssertions->setEvidence(std::vector<HoldEvidence>{});
                stage.app().evaluate();
              }),
      popover("refused", kCharging,
              [](Stage& stage) {
                playTwoAgents(stage);
                refuse(stage, "Operation inhibited");
              }),
      popover("low-budget", {.batteryPercent = 82, .isOnAC = false},
              [](Stage& stage) {
                playTwoAgents(stage);
                const Date now = stage.clock().now();
                stage.report(reportOf(AgentType::claude, 168'000, 60, 4.1, now));
                stage.report(reportOf(AgentType::codex, 90'000, 8, 0.84, now));
                stage.report(reportOf(AgentType::opencode, 40'000, 2, std::nullopt, now));
                stage.hook("o", AgentType::opencode, AgentState::waiting);
              }),
      popover("200-sessions", kCharging, playTwoHundredSessions),
      popover("long-names", kCharging,
              [](Stage& stage) { nameAtLength(stage, repeated("interminable ", 24)); }),
      popover("right-to-left", kCharging,
              [](Stage& stage) { nameAtLength(stage, "المحطة الطرفية الرئيسية للمشروع الكبير"); }),
      popover("emoji", kCharging,
              [](Stage& stage) { nameAtLength(stage, "🦅 kestrel 👩‍💻 ✨ 日本語"); }),
  };
}

}  // namespace kestrel
