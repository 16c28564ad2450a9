#pragma once

#include <QPointer>
#include <memory>

#include "KestrelApp/OnboardingView.h"
#include "KestrelApp/StatusBarController.h"
#include "KestrelApp/ViewServices.h"

namespace kestrel {

class KestrelAppShellView;

/// Makes what the windows hold, and with the first of them what they share; shows the introduction. Main
/// thread.
class AppViews {
 public:
  explicit AppViews(const ViewServices::Dependencies& dependencies);
  ~AppViews();
  AppViews(const AppViews&) = delete;
  AppViews& operator=(const AppViews&) = delete;

  /// For a controller that this object outlives.
  [[nodiscard]] StatusBarController::Views factories();
  /// In front of all windows.
  void showIntroduction();

 private:
  [[nodiscard]] ViewContext& context();
  [[nodiscard]] std::unique_ptr<QWidget> makePopover(StatusBarController& controller);
  [[nodiscard]] std::unique_ptr<QWidget> makeShell();

  const ViewServices::Dependencies dependencies_;
  std::unique_ptr<ViewServices> services_;
  std::unique_ptr<OnboardingView> introduction_;
  /// While its window exists.
  QPointer<KestrelAppShellView> shell_;
};

}  // namespace kestrel
