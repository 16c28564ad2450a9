#include <fmt/format.h>

#include "screenshots/Scene.h"
#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"

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

/// Two weeks of three agents, with a pause.
void playWeeks(ViewStage& views) {
  Stage& stage = views.stage();
  playTwoAgents(stage);
  for (int day = 1; day < 14; ++day) {
    if (day == 5 || day == 6) continue;
    const int weight = 3 + (day * 7) % 11;
    stage.use(AgentType::claude, weight * 61'000, weight * 0.31, day * kDay, fmt::format("c{}", day));
    if (day % 3 != 0) {
      stage.use(AgentType::codex, weight * 37'000, weight * 0.2, day * kDay + 9, fmt::format("x{}", day));
    }
    if (day % 2 == 0) {
      stage.use(AgentType::opencode, weight * 18'000, 0, day * kDay + 20, fmt::format("o{}", day));
    }
  }
  const Date now = stage.clock().now();
  auto opencode = reportOf(AgentType::opencode, std::nullopt, std::nullopt, std::nullopt, now);
  stage.report(opencode);
  stage.report(reportOf(AgentType::codex, 172'000, 12, 0.84, now));
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
  };
}

}  // namespace kestrel
