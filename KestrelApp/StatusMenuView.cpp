#include "KestrelApp/StatusMenuView.h"

#include <QAction>
#include <QMenu>
#include <QString>
#include <algorithm>
#include <cstddef>
#include <utility>

namespace kestrel {
namespace {

/// Toolkits and hosts take a single ampersand for the mark of a shortcut.
QString labelOf(const StatusMenuItem& item) {
  return QString::fromStdString(item.title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace

StatusMenuView::StatusMenuView(std::function<void(StatusMenuAction)> onChosen)
    : onChosen_(std::move(onChosen)), menu_(std::make_unique<QMenu>()) {}

StatusMenuView::~StatusMenuView() = default;

void StatusMenuView::show(std::vector<StatusMenuItem> items) {
  if (items == items_) return;
  const bool isSameShape = hasShapeOf(items);
  items_ = std::move(items);
  if (!isSameShape) return rebuild();
  const auto actions = menu_->actions();
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (!items_[i].isSeparator()) actions[static_cast<qsizetype>(i)]->setText(labelOf(items_[i]));
  }
}

bool StatusMenuView::hasShapeOf(const std::vector<StatusMenuItem>& items) const {
  return std::ranges::equal(items, items_, [](const StatusMenuItem& a, const StatusMenuItem& b) {
    return a.action == b.action && a.isSeparator() == b.isSeparator();
  });
}

void StatusMenuView::rebuild() {
  menu_->clear();
  for (const StatusMenuItem& item : items_) {
    if (item.isSeparator()) {
      menu_->addSeparator();
      continue;
    }
    QAction* const action = menu_->addAction(labelOf(item));
    action->setEnabled(item.isEnabled());
    QObject::connect(action, &QAction::triggered, menu_.get(),
                     [this, chosen = item.action] { onChosen_(chosen); });
  }
}

}  // namespace kestrel
