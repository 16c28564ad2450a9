#include <fmt/format.h>

#include "screenshots/Scene.h"
#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"

#include "KestrelApp/AgentSetupSheet.h"
#include "KestrelApp/Sections/AgentsSection.h"
#include "KestrelCore/Presentation/AgentSetupModel.h"

namespace kestrel {
namespace {

using Play = std::function<void(ViewStage&)>;

Scene agents(const std::string& name, QSize size, const Play& play,
             Qt::LayoutDirection direction = Qt::LeftToRight) {
  return {"agents-" + name, [size, play, direction] {
            auto views = std::make_shared<ViewStage>();
            play(*views);
            auto section = std::make_unique<AgentsSection>(views->context());
            section->setLayoutDirection(direction);
            section->resize(size);
            return Scenery{views, std::move(section)};
          }};
}

void nameAtLength(ViewStage& views, const std::string& name) {
  playInstalledAgents(views);
  views.stage().hook(name, AgentType::claude, AgentState::error, "/home/u/" + name);
  views.stage().hook("emoji", AgentType::claude, AgentState::completed, "/home/u/🦅 p/שלום");
}

/// The folder of this run's programs is no place that anybody has.
std::string withUsualFolder(std::string text, const std::string& folder) {
  for (auto at = text.find(folder); at != std::string::npos; at = text.find(folder)) {
    text.replace(at, folder.size(), "/usr/bin");
  }
  return text;
}

Scene setup(const std::string& name, AgentType agent, Qt::LayoutDirection direction = Qt::LeftToRight) {
  return {"setup-" + name, [agent, direction] {
            auto views = std::make_shared<ViewStage>();
            playInstalledAgents(*views);
            AgentSetupModel model = agentSetupModel(views->context().inspection, agent);
            for (auto& snippet : model.snippets) {
              snippet.text = withUsualFolder(snippet.text, views->programs().string());
              for (auto& step : snippet.steps) step = withUsualFolder(step, views->programs().string());
            }
            auto sheet = std::make_unique<AgentSetupSheet>(views->context(), agent, model);
            sheet->setLayoutDirection(direction);
            return Scenery{views, std::move(sheet)};
          }};
}

}  // namespace

Scenes agentsScenes() {
  constexpr QSize kUsual(760, 640);
  std::string longName;
  for (int i = 0; i < 60; ++i) longName += "long-";
  return {
      agents("two", kUsual, playInstalledAgents),
      agents("none", kUsual, [](ViewStage&) {}),
      agents("small", {540, 480}, playInstalledAgents),
      agents("large", {1200, 900}, playInstalledAgents),
      agents("200-sessions", kUsual, [](ViewStage& views) { playTwoHundredSessions(views.stage()); }),
      agents("long-names", kUsual, [longName](ViewStage& views) { nameAtLength(views, longName); }),
      agents(
          "right-to-left", kUsual, [](ViewStage& views) { nameAtLength(views, "שלום עולם"); },
          Qt::RightToLeft),
      setup("claude", AgentType::claude),
      setup("codex", AgentType::codex),
      setup("opencode", AgentType::opencode),
      setup("aider", AgentType::aider),
      setup("right-to-left", AgentType::codex, Qt::RightToLeft),
  };
}

}  // namespace kestrel
