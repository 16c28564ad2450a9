#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KestrelApp/AppWindow.h"
#include "KestrelApp/KestrelBlobGlyphRenderer.h"
#include "KestrelApp/StatusMenuView.h"
#include "KestrelApp/StatusPopover.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/SurfaceActions.h"
#include "KestrelPlatform/PlatformFactory.h"

class QIcon;
class QSystemTrayIcon;
class QWidget;

namespace kestrel {

/// The status icon and what opens from it: popover, menu, main and settings window. It reads what the
/// coordinator publishes, and changes only settings. The icon exists while something shows icons; without
/// such a host the main window opens instead. Main thread.
class StatusBarController {
 public:
  /// Make what the windows hold, each when it is first shown.
  struct Views {
    using Factory = std::function<std::unique_ptr<QWidget>(StatusBarController&)>;
    Factory popover;
    Factory appShell;
    Factory settings;
  };
  /// Everything here outlives the controller.
  struct Context {
    AppCoordinator& coordinator;
    Executor& executor;
    TrayHost& host;
    DesktopTraits traits;
    KestrelBlobGlyphRenderer& renderer;
    Logger logger;
    Views views;
    std::function<void()> quit;
  };

  /// How long a host may take to come before the main window opens.
  static constexpr double kHostPatienceSeconds = 5;

  explicit StatusBarController(Context context);
  ~StatusBarController();
  StatusBarController(const StatusBarController&) = delete;
  StatusBarController& operator=(const StatusBarController&) = delete;

  /// Once, after the coordinator was started.
  void setup();
  void togglePopover();
  void closePopover();
  void openAppShell();
  void openSettings();

  /// Null while nothing shows icons.
  [[nodiscard]] QSystemTrayIcon* statusItem() { return statusItem_.get(); }
  /// Null until it was opened for the first time.
  [[nodiscard]] StatusPopover* popover() { return popover_.get(); }
  [[nodiscard]] AppWindow* appWindowController() { return appWindowController_.get(); }

 private:
  void followHost();
  void createStatusItem();
  void goWithoutHost();
  void syncStatusItem();
  void handleStatusItemClick(int reason);
  void showContextMenu();
  void startAnimationTimer(KestrelVisualState state);
  void stopAnimationTimer();
  void setImage(KestrelVisualState state, bool isDisabled);
  [[nodiscard]] std::int64_t workingCount() const;
  [[nodiscard]] bool isPaused() const;
  void perform(StatusMenuAction action);
  void contextResume() { actions_.resume(); }
  void contextPause30() { actions_.pause(SurfaceActions::kShortPauseSeconds); }
  void contextPause1h() { actions_.pause(SurfaceActions::kLongPauseSeconds); }
  void contextToggleMaster() { actions_.toggleMaster(); }
  void contextQuit() { context_.quit(); }

  const Context context_;
  const SurfaceActions actions_;
  /// Beside the icon, which shows it.
  std::unique_ptr<StatusMenuView> menu_;
  std::unique_ptr<QSystemTrayIcon> statusItem_;
  std::unique_ptr<StatusPopover> popover_;
  RegistrationPtr eventMonitor_;
  std::vector<RegistrationPtr> cancellables_;
  std::unique_ptr<AppWindow> appWindowController_;
  std::unique_ptr<AppWindow> settingsWindowController_;
  RegistrationPtr animationTimer_;
  int currentFrameIndex_ = 0;

  /// The host that the icon was made for.
  unsigned shownHost_ = 0;
  /// What the icon shows, so that it is touched only when something changed.
  std::optional<std::int64_t> shownImage_;
  std::optional<std::string> shownTooltip_;
  RegistrationPtr patience_;
  /// While a click that closed the popover may also reach the icon.
  RegistrationPtr justClosed_;
};

}  // namespace kestrel
