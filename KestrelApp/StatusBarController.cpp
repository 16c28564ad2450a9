#include "KestrelApp/StatusBarController.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QWindow>
#include <utility>

#include "KestrelCore/Presentation/StatusMenu.h"
#include "KestrelCore/Presentation/StatusTooltip.h"

namespace kestrel {
namespace {

constexpr const char* kNoHostNotice =
    "There is no system tray here for Kestrel's icon, so this window opened instead.";
/// A click on the icon closes the popover first, as one outside, and arrives a moment later.
constexpr double kSameClickSeconds = 0.25;

/// A connection of Qt's that lasts as long as this.
class Connection final : public Registration {
 public:
  explicit Connection(QMetaObject::Connection connection) : connection_(std::move(connection)) {}
  ~Connection() override { QObject::disconnect(connection_); }

 private:
  const QMetaObject::Connection connection_;
};

}  // namespace

StatusBarController::StatusBarController(Context context)
    : context_(std::move(context)),
      actions_(context_.coordinator.settings(),
               [&coordinator = context_.coordinator] { coordinator.evaluate(); }) {}

StatusBarController::~StatusBarController() = default;

void StatusBarController::setup() {
  // A popup closes by itself at a click elsewhere; where the popover is none, losing the focus tells of it.
  eventMonitor_ = std::make_unique<Connection>(
      QObject::connect(qApp, &QGuiApplication::focusWindowChanged, [this](const QWindow* focused) {
        const bool isOurs = popover_ && focused == popover_->window().windowHandle();
        if (!isOurs && QApplication::activePopupWidget() == nullptr) closePopover();
      }));
  const auto sync = [this](const auto&) { syncStatusItem(); };
  const AppCoordinator& coordinator = context_.coordinator;
  cancellables_.push_back(coordinator.currentDecision().subscribe(sync));
  cancellables_.push_back(coordinator.dominantVisualState().subscribe(sync));
  cancellables_.push_back(coordinator.agentFamilies().subscribe(sync));
  cancellables_.push_back(context_.host.observe([this] { followHost(); }));
  patience_ = context_.executor.after(kHostPatienceSeconds, [this] { goWithoutHost(); });
  followHost();
}

/// The toolkit asks once whether there is a host, so the icon is made anew for each one.
void StatusBarController::followHost() {
  const unsigned host = context_.host.present();
  if (host == std::exchange(shownHost_, host)) return;
  stopAnimationTimer();
  statusItem_.reset();
  menu_.reset();
  shownImage_.reset();
  shownTooltip_.reset();
  if (host == 0) return;
  patience_.reset();
  if (appWindowController_) appWindowController_->setNotice({});
  createStatusItem();
}

void StatusBarController::createStatusItem() {
  menu_ = std::make_unique<StatusMenuView>([this](StatusMenuAction action) { perform(action); });
  statusItem_ = std::make_unique<QSystemTrayIcon>();
  QObject::connect(statusItem_.get(), &QSystemTrayIcon::activated, statusItem_.get(),
                   [this](QSystemTrayIcon::ActivationReason reason) { handleStatusItemClick(reason); });
  syncStatusItem();
  if (context_.traits.hostOpensMenu) statusItem_->setContextMenu(&menu_->menu());
  statusItem_->show();
}

void StatusBarController::goWithoutHost() {
  patience_.reset();
  context_.logger.info("There is no system tray yet; the window is shown instead of the icon");
  openAppShell();
  appWindowController_->setNotice(kNoHostNotice);
}

void StatusBarController::syncStatusItem() {
  if (!statusItem_) return;
  const AppCoordinator& coordinator = context_.coordinator;
  const KestrelVisualState state = coordinator.dominantVisualState().get();
  const WakeDecision& decision = coordinator.currentDecision().get();
  const bool isMasterEnabled = context_.coordinator.settings().masterEnabled();
  setImage(state, !isMasterEnabled);
  const std::string tooltip = statusTooltip(decision, workingCount(), coordinator.agentFamilies().get());
  if (tooltip != shownTooltip_) statusItem_->setToolTip(QString::fromStdString(tooltip));
  shownTooltip_ = tooltip;
  menu_->show(statusMenu(decision, workingCount(), isMasterEnabled, isPaused()));
  if (isAnimated(state)) {
    startAnimationTimer(state);
  } else {
    stopAnimationTimer();
  }
}

void StatusBarController::setImage(KestrelVisualState state, bool isDisabled) {
  const QIcon icon =
      context_.renderer.createStatusIcon(state, currentFrameIndex_, workingCount(), isDisabled);
  if (shownImage_ == icon.cacheKey()) return;
  shownImage_ = icon.cacheKey();
  statusItem_->setIcon(icon);
}

void StatusBarController::startAnimationTimer(KestrelVisualState state) {
  if (animationTimer_) return;
  const double interval = defaultFrameDuration(state);
  animationTimer_ = context_.executor.repeat(interval, interval, [this] {
    ++currentFrameIndex_;
    setImage(context_.coordinator.dominantVisualState().get(), false);
  });
}

void StatusBarController::stopAnimationTimer() {
  animationTimer_.reset();
}

void StatusBarController::handleStatusItemClick(int reason) {
  if (reason == QSystemTrayIcon::Context) {
    if (!context_.traits.hostOpensMenu) showContextMenu();
    return;
  }
  if (reason != QSystemTrayIcon::Trigger) return;
  const bool isControlHeld = QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
  if (isControlHeld) {
    showContextMenu();
  } else {
    togglePopover();
  }
}

void StatusBarController::showContextMenu() {
  closePopover();
  menu_->show(statusMenu(context_.coordinator.currentDecision().get(), workingCount(),
                         context_.coordinator.settings().masterEnabled(), isPaused()));
  menu_->menu().popup(QCursor::pos());
}

void StatusBarController::togglePopover() {
  if (popover_ && popover_->isShown()) return closePopover();
  if (justClosed_) return;
  if (!popover_) {
    popover_ = std::make_unique<StatusPopover>(context_.views.popover(*this), [this] {
      justClosed_ = context_.executor.after(kSameClickSeconds, [this] { justClosed_.reset(); });
    });
  }
  QRect anchor = statusItem_ ? statusItem_->geometry() : QRect();
  if (!anchor.isValid()) anchor = QRect(QCursor::pos(), QSize(1, 1));
  popover_->show(anchor);
}

void StatusBarController::closePopover() {
  if (popover_ && popover_->isShown()) popover_->close();
}

void StatusBarController::openAppShell() {
  closePopover();
  if (!appWindowController_)
    appWindowController_ = std::make_unique<AppWindow>("Kestrel", context_.views.appShell(*this));
  appWindowController_->bringToFront();
}

void StatusBarController::openSettings() {
  closePopover();
  if (!settingsWindowController_)
    settingsWindowController_ =
        std::make_unique<AppWindow>("Kestrel Settings", context_.views.settings(*this));
  settingsWindowController_->bringToFront();
}

std::int64_t StatusBarController::workingCount() const {
  return static_cast<std::int64_t>(context_.coordinator.agentCoordinator().activeWorkingCount());
}

bool StatusBarController::isPaused() const {
  const auto until = context_.coordinator.settings().pauseUntil();
  return until && *until > context_.coordinator.clock().now();
}

void StatusBarController::perform(StatusMenuAction action) {
  switch (action) {
    case StatusMenuAction::openKestrel:
      return openAppShell();
    case StatusMenuAction::resume:
      return contextResume();
    case StatusMenuAction::pause30Minutes:
      return contextPause30();
    case StatusMenuAction::pause1Hour:
      return contextPause1h();
    case StatusMenuAction::toggleMaster:
      return contextToggleMaster();
    case StatusMenuAction::settings:
      return openSettings();
    case StatusMenuAction::quit:
      return contextQuit();
    case StatusMenuAction::none:
      break;
  }
}

}  // namespace kestrel
