#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "KestrelCore/Presentation/StatusMenu.h"

class QMenu;

namespace kestrel {

/// Shows a menu model. Items that only change their text stay the same to whoever has the menu open. Main
/// thread.
class StatusMenuView {
 public:
  explicit StatusMenuView(std::function<void(StatusMenuAction)> onChosen);
  ~StatusMenuView();
  StatusMenuView(const StatusMenuView&) = delete;
  StatusMenuView& operator=(const StatusMenuView&) = delete;

  /// Does nothing when it shows this already.
  void show(std::vector<StatusMenuItem> items);
  [[nodiscard]] QMenu& menu() { return *menu_; }

 private:
  [[nodiscard]] bool hasShapeOf(const std::vector<StatusMenuItem>& items) const;
  void rebuild();

  const std::function<void(StatusMenuAction)> onChosen_;
  const std::unique_ptr<QMenu> menu_;
  std::vector<StatusMenuItem> items_;
};

}  // namespace kestrel
