#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <thread>

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

/// Plays the trial to its end, through the socket.
void finishTrial(ViewStage& views, HoldEvidenceState answer, const std::string& detail) {
  Stage& stage = views.stage();
  stage.machine().powerAssertions->setEvidence(
      std::vector<HoldEvidence>{{"login manager", HoldKind::idle, answer, detail}});
  stage.app().start();
  OnboardingTrial& trial = views.context().trial;
  trial.start();
  while (trial.report().get().step == OnboardingTrial::Step::sending) {
    stage.executor().advance(0.01);
    std::this_thread::yield();
  }
  stage.executor().advance(20);
}

void findHold(ViewStage& views) {
  finishTrial(views, HoldEvidenceState::held, "1");
}

void findRefusal(ViewStage& views) {
  finishTrial(views, HoldEvidenceState::refused, "Operation inhibited");
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
      onboarding("2-looking", 1, [](ViewStage&) {}),
      onboarding("2-none", 1, [](ViewStage& views) { views.inspect(); }),
      onboarding("4-trying", 3, startTrial),
      onboarding("4-held", 3, findHold),
      onboarding("4-refused", 3, findRefusal),
      onboarding("2-right-to-left", 1, playInstalledAgents, Qt::RightToLeft),
      {"app-icon",
       [] {
         return Scenery{nullptr, iconSheet()};
       }},
  };
}

}  // namespace kestrel
