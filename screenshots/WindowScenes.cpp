#include <QMainWindow>
#include <QMessageBox>
#include <array>

#include "screenshots/Scene.h"
#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"

#include "KestrelApp/AppWindow.h"
#include "KestrelApp/DiagnosticsSheet.h"
#include "KestrelApp/KestrelAppShellView.h"
#include "KestrelApp/SettingsView.h"
#include "KestrelApp/Widgets/AskFirst.h"
#include "KestrelCore/Presentation/SettingsModel.h"

namespace kestrel {
namespace {

using Play = std::function<void(ViewStage&)>;
using Section = KestrelAppShellView::Section;

constexpr QSize kUsual(960, 640);
constexpr QSize kSmall(720, 480);
constexpr QSize kLarge(1400, 900);
constexpr Stage::Machine kCharging{.batteryPercent = 82, .isOnAC = true, .isCharging = true};
constexpr Stage::Machine kNearlyEmpty{
    .batteryPercent = 12, .isOnAC = false, .isLowPowerMode = true, .heat = 2};

/// Lives through the hours before now, an evaluation every few seconds.
void playTheDayBefore(Stage& stage) {
  struct Hours {
    double count;
    TimelineKind kind;
  };
  constexpr std::array<Hours, 11> kDay{{{2.4, TimelineKind::released},
                                        {3.3, TimelineKind::held},
                                        {1.1, TimelineKind::released},
                                        {0.8, TimelineKind::held},
                                        {6.5, TimelineKind::unknown},
                                        {0.6, TimelineKind::released},
                                        {2.7, TimelineKind::held},
                                        {0.7, TimelineKind::blocked},
                                        {1.2, TimelineKind::released},
                                        {1.9, TimelineKind::held},
                                        {0.5, TimelineKind::released}}};
  constexpr double kStep = 25;
  // In the afternoon.
  const Date end = stage.clock().now() + 11 * 3600;
  double total = 0;
  for (const Hours& hours : kDay) total += hours.count * 3600;
  stage.clock().set(end - total);
  for (const Hours& hours : kDay) {
    stage.settings().setMasterEnabled(hours.kind != TimelineKind::blocked);
    for (double played = 0; played < hours.count * 3600; played += kStep) {
      stage.clock().advance(kStep);
      if (hours.kind == TimelineKind::unknown) continue;
      const bool works = hours.kind == TimelineKind::held;
      stage.hook("c1", AgentType::claude, works ? AgentState::working : AgentState::idle, "/home/u/p");
      stage.app().evaluate();
    }
  }
}

/// Claude Code and Codex at work for half an hour, seen at each moment.
void playTwoAtWork(Stage& stage) {
  stage.machine().powerAssertions->setEvidence(
      std::vector<HoldEvidence>{{"login manager", HoldKind::idle, HoldEvidenceState::held, "4711"}});
  for (double seconds = 0; seconds < 1924; seconds += 4) {
    stage.clock().advance(4);
    stage.hook("c1", AgentType::claude, AgentState::working, "/home/u/p");
    stage.hook("x1", AgentType::codex, AgentState::working, "/home/u/q");
    stage.app().evaluate();
  }
}

void playADay(ViewStage& views) {
  Stage& stage = views.stage();
  playTheDayBefore(stage);
  for (const double hoursAgo : {0.5, 1.2, 2.4, 3.7, 5.1}) {
    stage.use(AgentType::claude, 181'407, 1.21, hoursAgo * 3600, "c1");
    stage.use(AgentType::codex, 64'212, 0.42, hoursAgo * 3600 + 60, "x1");
  }
  stage.startUsage();
  playTwoAtWork(stage);
}

void playLowBudget(ViewStage& views) {
  playADay(views);
  Stage& stage = views.stage();
  stage.report(reportOf(AgentType::claude, 168'000, 60, 4.1, stage.clock().now()));
  stage.report(reportOf(AgentType::codex, 90'000, 8, 0.84, stage.clock().now()));
  stage.app().evaluate();
}

void refuse(ViewStage& views) {
  playADay(views);
  views.stage().machine().powerAssertions->setEvidence(std::vector<HoldEvidence>{
      {"login manager", HoldKind::idle, HoldEvidenceState::refused, "Operation inhibited"},
      {"desktop session", HoldKind::desktop, HoldEvidenceState::unavailable,
       "org.gnome.SessionManager has no owner"}});
  views.stage().app().evaluate();
}

void pause(ViewStage& views) {
  playADay(views);
  views.stage().settings().setPauseUntil(views.stage().clock().now() + 1500);
  views.stage().app().evaluate();
}

void switchOff(ViewStage& views) {
  playADay(views);
  views.stage().settings().setMasterEnabled(false);
  views.stage().app().evaluate();
}

Scene shell(const std::string& name, Section section, QSize size, const Play& play,
            const Stage::Machine& machine = kCharging, Qt::LayoutDirection direction = Qt::LeftToRight) {
  return {"window-" + name, [=] {
            auto views = std::make_shared<ViewStage>(machine);
            play(*views);
            auto view = std::make_unique<KestrelAppShellView>(views->context());
            view->setLayoutDirection(direction);
            view->resize(size);
            view->showSection(section);
            return Scenery{views, std::move(view)};
          }};
}

/// As high as all of it.
Scene settings(const std::string& name, const Play& play) {
  return {"settings-" + name, [=] {
            auto views = std::make_shared<ViewStage>(kCharging);
            play(*views);
            auto view = std::make_unique<SettingsView>(views->context());
            view->resize(600, 1180);
            return Scenery{views, std::move(view)};
          }};
}

Scene diagnostics() {
  return {"diagnostics", [] {
            auto views = std::make_shared<ViewStage>(kCharging);
            auto sheet = std::make_unique<DiagnosticsSheet>(views->context());
            sheet->show();
            views->stage().executor().advance(1);
            return Scenery{views, std::move(sheet)};
          }};
}

/// With the line that says why it opened.
Scene withNotice() {
  return {"window-notice", [] {
            struct World {
              ViewStage views{kCharging};
              AppWindow window{"Kestrel", std::make_unique<KestrelAppShellView>(views.context())};
            };
            auto world = std::make_shared<World>();
            playADay(world->views);
            world->window.setNotice("This desktop shows no status icons, so Kestrel opened its window.");
            std::unique_ptr<QWidget> content(world->window.window().takeCentralWidget());
            content->resize(kUsual);
            return Scenery{world, std::move(content)};
          }};
}

/// What stands between a person and a loss.
Scene question() {
  return {"settings-question", [] {
            struct World {
              ViewStage views{kCharging};
              SettingsView settings{views.context()};
            };
            auto world = std::make_shared<World>();
            const SettingsModel model = settingsModel(settingsFacts(world->views.stage().app()));
            askFirst(world->settings, model.resetQuestion, QStringLiteral("Reset"), [] {});
            return Scenery{world, std::unique_ptr<QWidget>(world->settings.findChild<QMessageBox*>())};
          }};
}

Scenes powerScenes() {
  return {shell("power", Section::power, {960, 900}, playADay),
          shell("power-usual", Section::power, kUsual, playADay),
          shell("power-small", Section::power, kSmall, playADay),
          shell("power-large", Section::power, kLarge, playADay),
          shell("power-blocked", Section::power, {960, 900}, playADay, kNearlyEmpty),
          shell("power-refused", Section::power, {960, 900}, refuse, {}),
          shell("power-right-to-left", Section::power, {960, 900}, playADay, kNearlyEmpty, Qt::RightToLeft),
          shell("power-nothing", Section::power, {960, 900}, [](ViewStage&) {}, {})};
}

}  // namespace

Scenes windowScenes() {
  Scenes scenes{
      shell("overview", Section::overview, kUsual, playADay),
      shell("overview-empty", Section::overview, kUsual, [](ViewStage&) {}),
      shell("overview-low-budget", Section::overview, kUsual, playLowBudget),
      shell("overview-blocked", Section::overview, kUsual, playADay, kNearlyEmpty),
      shell("overview-paused", Section::overview, kUsual, pause),
      shell("overview-switched-off", Section::overview, kUsual, switchOff),
      shell("overview-refused", Section::overview, kUsual, refuse),
      shell("overview-small", Section::overview, kSmall, playLowBudget),
      shell("overview-large", Section::overview, kLarge, playADay),
      shell("overview-right-to-left", Section::overview, kUsual, playLowBudget, kCharging, Qt::RightToLeft),
      shell("appearance", Section::appearance, kUsual, [](ViewStage&) {}),
      shell("agents", Section::agents, kUsual, playInstalledAgents),
      shell(
          "appearance-right-to-left", Section::appearance, kUsual, [](ViewStage&) {}, kCharging,
          Qt::RightToLeft),
      shell("appearance-small", Section::appearance, kSmall, [](ViewStage&) {}),
      shell("settings", Section::settings, kUsual, playADay),
      shell("settings-small", Section::settings, kSmall, playADay),
      shell("settings-large", Section::settings, kLarge, playADay),
      shell("settings-right-to-left", Section::settings, {960, 1200}, playADay, kCharging, Qt::RightToLeft),
      settings("all", [](ViewStage& views) { views.stage().settings().setNotificationsEnabled(false); }),
      withNotice(),
      question(),
      diagnostics()};
  for (auto& scene : powerScenes()) scenes.push_back(std::move(scene));
  return scenes;
}

}  // namespace kestrel
