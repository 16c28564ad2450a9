#include <fmt/format.h>

#include "screenshots/Scene.h"
#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"

#include "KestrelApp/KestrelAppShellView.h"
#include "KestrelApp/Sections/BudgetSection.h"

namespace kestrel {
namespace {

using Play = std::function<void(ViewStage&)>;

constexpr double kDay = 86'400;

Scene budget(const std::string& name, QSize size, const Play& play,
             Qt::LayoutDirection direction = Qt::LeftToRight) {
  return {"budget-" + name, [size, play, direction] {
            auto views = std::make_shared<ViewStage>();
            play(*views);
            auto section = std::make_unique<BudgetSection>(views->context());
            section->setLayoutDirection(direction);
            section->resize(size);
            section->show();
            views->stage().settle();
            return Scenery{views, std::move(section)};
          }};
}

constexpr const char* kModels[] = {"claude-opus-4-5", "gpt-5-codex", "deepseek-v4-flash-free"};

void use(Stage& stage, AgentType agent, const char* model, std::int64_t tokens, double cost, double ago) {
  UsageEvent event{.agentType = agent, .sessionId = fmt::format("{}{}", model, ago), .inputTokens = tokens};
  event.modelId = model;
  event.costEstimateUSD = cost;
  event.timestamp = stage.clock().now() - ago;
  event.deriveTotal();
  stage.usage().handleUsageEvent(event);
}

void report(Stage& stage, AgentType agent, const char* model, std::optional<std::int64_t> contextUsed,
            std::optional<double> quotaLeft, std::optional<double> cost) {
  auto report = reportOf(agent, contextUsed, quotaLeft, cost, stage.clock().now());
  report.modelId = model;
  stage.report(report);
}

/// Two weeks of three agents, with a pause.
void playWeeks(ViewStage& views) {
  Stage& stage = views.stage();
  playTwoAgents(stage);
  for (int day = 1; day < 14; ++day) {
    if (day == 5 || day == 6) continue;
    const int weight = 3 + (day * 7) % 11;
    use(stage, AgentType::claude, kModels[0], weight * 61'000, weight * 0.31, day * kDay);
    if (day % 3 != 0) use(stage, AgentType::codex, kModels[1], weight * 37'000, weight * 0.2, day * kDay + 9);
    if (day % 2 == 0) use(stage, AgentType::opencode, kModels[2], weight * 18'000, 0, day * kDay + 20);
  }
  report(stage, AgentType::claude, kModels[0], 44'000, std::nullopt, 1.2);
  report(stage, AgentType::codex, kModels[1], 172'000, 12, 0.84);
  report(stage, AgentType::opencode, kModels[2], std::nullopt, std::nullopt, std::nullopt);
}

Scene window() {
  return {"window-budget", [] {
            auto views = std::make_shared<ViewStage>();
            playWeeks(*views);
            auto view = std::make_unique<KestrelAppShellView>(views->context());
            view->resize(960, 900);
            view->showSection(KestrelAppShellView::Section::budget);
            view->show();
            views->stage().settle();
            return Scenery{views, std::move(view)};
          }};
}

}  // namespace

Scenes budgetScenes() {
  constexpr QSize kUsual(760, 640);
  return {
      budget("weeks", kUsual, playWeeks),
      budget("whole", {760, 1000}, playWeeks),
      budget("being-read", kUsual, [](ViewStage&) {}),
      budget("empty", kUsual, [](ViewStage& views) { views.stage().startUsage(); }),
      budget("small", {540, 480}, playWeeks),
      budget("large", {1200, 900}, playWeeks),
      budget("many", kUsual, [](ViewStage& views) { playTwoHundredSessions(views.stage()); }),
      budget("right-to-left", {760, 1000}, playWeeks, Qt::RightToLeft),
      window(),
  };
}

}  // namespace kestrel
