#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/PopoverModel.h"
#include "KestrelCore/Presentation/SurfaceActions.h"
#include "KestrelCore/Support/LocalCalendar.h"

class QStackedWidget;

namespace kestrel {

class FamilyList;
class NoAgentsView;
class PopoverFooter;
class PopoverHeader;
class PowerStrip;
class TodayStrip;

/// The popover: everything at a glance. Of a fixed size; live while it is visible, and idle while it is not.
class MenuBarContentView final : public QWidget {
 public:
  /// The coordinator outlives the view.
  explicit MenuBarContentView(AppCoordinator& coordinator, QWidget* parent = nullptr);
  ~MenuBarContentView() override;

  // Set after construction, at any time; empty ones are not called.
  std::function<void()> onOpenShell;
  std::function<void()> onOpenSettings;
  std::function<void()> onSetUpAgents;
  /// At Escape.
  std::function<void()> onDismiss;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void layOut();
  void connectControls();
  void refresh();

  AppCoordinator& coordinator_;
  const SurfaceActions actions_;
  const SystemLocalCalendar calendar_;
  PopoverHeader* header_;
  PowerStrip* power_;
  QStackedWidget* middle_;
  FamilyList* families_;
  NoAgentsView* noAgents_;
  TodayStrip* today_;
  PopoverFooter* footer_;
  std::optional<PopoverModel> shown_;
  /// While visible.
  RegistrationPtr evaluations_;
};

}  // namespace kestrel
