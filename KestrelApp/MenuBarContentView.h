#pragma once

#include <functional>
#include <optional>

#include "KestrelApp/LiveView.h"
#include "KestrelCore/Presentation/PopoverModel.h"
#include "KestrelCore/Presentation/SurfaceActions.h"

class QStackedWidget;

namespace kestrel {

class FamilyList;
class NoAgentsView;
class PopoverFooter;
class PopoverHeader;
class PowerStrip;
class TodayStrip;

/// The popover: everything at a glance. Of a fixed size.
class MenuBarContentView final : public LiveView {
 public:
  /// The context outlives the view.
  explicit MenuBarContentView(ViewContext& context, QWidget* parent = nullptr);

  // Set after construction, at any time; empty ones are not called.
  std::function<void()> onOpenShell;
  std::function<void()> onOpenSettings;
  std::function<void()> onSetUpAgents;
  /// At Escape.
  std::function<void()> onDismiss;

 protected:
  void refresh() override;
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void layOut();
  void connectControls();

  const SurfaceActions actions_;
  PopoverHeader* header_;
  PowerStrip* power_;
  QStackedWidget* middle_;
  FamilyList* families_;
  NoAgentsView* noAgents_;
  TodayStrip* today_;
  PopoverFooter* footer_;
  std::optional<PopoverModel> shown_;
};

}  // namespace kestrel
