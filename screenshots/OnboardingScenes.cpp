#include <QLabel>
#include <QPixmap>
#include <QPushButton>

#include "screenshots/Scene.h"
#include "screenshots/ViewStage.h"

#include "KestrelApp/AppIcon.h"
#include "KestrelApp/OnboardingView.h"

namespace kestrel {
namespace {

Scene onboarding(const std::string& name, int page, const std::function<void(ViewStage&)>& play,
                 Qt::LayoutDirection direction = Qt::LeftToRight) {
  return {"onboarding-" + name, [page, play, direction] {
            auto views = std::make_shared<ViewStage>();
            play(*views);
            auto view = std::make_unique<OnboardingView>(views->context());
            view->setLayoutDirection(direction);
            view->show();
            for (int i = 0; i < page; ++i) {
              for (auto* button : view->findChildren<QPushButton*>()) {
                if (button->text() == "Next") button->click();
              }
            }
            return Scenery{views, std::move(view)};
          }};
}

void startTrial(ViewStage& views) {
  playInstalledAgents(views);
  views.context().trial.start();
}

/// Every size side by side, as a desktop shows them.
std::unique_ptr<QWidget> iconSheet() {
  auto sheet = std::make_unique<QWidget>();
  int x = 16;
  for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
    auto* picture = new QLabel(sheet.get());
    picture->setPixmap(QPixmap::fromImage(drawAppIcon(side)));
    picture->setGeometry(x, 16, side, side);
    x += side + 16;
  }
  sheet->resize(x, 288);
  return sheet;
}

}  // namespace

Scenes onboardingScenes() {
  return {
      onboarding("1", 0, playInstalledAgents),
      onboarding("2", 1, playInstalledAgents),
      onboarding("3", 2, playInstalledAgents),
      onboarding("4", 3, playInstalledAgents),
      onboarding("4-trying", 3, startTrial),
      onboarding("2-right-to-left", 1, playInstalledAgents, Qt::RightToLeft),
      {"app-icon",
       [] {
         return Scenery{nullptr, iconSheet()};
       }},
  };
}

}  // namespace kestrel
