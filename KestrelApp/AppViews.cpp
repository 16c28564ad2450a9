#include "KestrelApp/AppViews.h"

#include "KestrelApp/KestrelAppShellView.h"
#include "KestrelApp/MenuBarContentView.h"
#include "KestrelApp/SettingsView.h"

namespace kestrel {

AppViews::AppViews(const ViewServices::Dependencies& dependencies) : dependencies_(dependencies) {}

AppViews::~AppViews() = default;

ViewContext& AppViews::context() {
  if (!services_) {
    services_ = std::make_unique<ViewServices>(dependencies_);
    services_->context().showIntroduction = [this] { showIntroduction(); };
  }
  return services_->context();
}

StatusBarController::Views AppViews::factories() {
  return {[this](StatusBarController& controller) { return makePopover(controller); },
          [this](StatusBarController&) { return makeShell(); },
          [this](StatusBarController&) { return std::make_unique<SettingsView>(context()); }};
}

std::unique_ptr<QWidget> AppViews::makePopover(StatusBarController& controller) {
  auto view = std::make_unique<MenuBarContentView>(context());
  view->onOpenShell = [&controller] { controller.openAppShell(); };
  view->onOpenSettings = [&controller] { controller.openSettings(); };
  view->onDismiss = [&controller] { controller.closePopover(); };
  view->onSetUpAgents = [this, &controller] {
    controller.openAppShell();
    if (shell_) shell_->showSection(KestrelAppShellView::Section::agents);
  };
  return view;
}

std::unique_ptr<QWidget> AppViews::makeShell() {
  auto shell = std::make_unique<KestrelAppShellView>(context());
  shell_ = shell.get();
  // A window that opens by itself, since there is no tray, does not cover the introduction.
  if (introduction_ && introduction_->isVisible())
    dependencies_.mainExecutor.post([this] { showIntroduction(); });
  return shell;
}

void AppViews::showIntroduction() {
  // From its first page.
  if (!introduction_ || !introduction_->isVisible()) {
    introduction_ = std::make_unique<OnboardingView>(context());
  }
  introduction_->show();
  introduction_->raise();
  introduction_->activateWindow();
}

}  // namespace kestrel
