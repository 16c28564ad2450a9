#include "KestrelApp/Popover/FamilyList.h"

#include <QBoxLayout>
#include <algorithm>
#include <cstddef>
#include <utility>

#include "KestrelApp/Popover/FamilyRow.h"
#include "KestrelApp/Theme.h"

namespace kestrel {

FamilyList::FamilyList(QWidget* parent) : QScrollArea(parent) {
  auto* content = new QWidget;
  lines_ = new QVBoxLayout(content);
  lines_->setContentsMargins(0, Theme::kSpaceSmall, 0, Theme::kSpaceSmall);
  lines_->setSpacing(Theme::kSpaceTiny);
  lines_->addStretch();
  setWidget(content);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  // With the keyboard one goes from row to row.
  setFocusPolicy(Qt::ClickFocus);
}

void FamilyList::setModel(const std::vector<PopoverRow>& rows) {
  std::vector<FamilyRow*> kept;
  for (const PopoverRow& row : rows) {
    FamilyRow* widget = takeRow(row.id);
    widget->setModel(row);
    const int at = static_cast<int>(kept.size());
    if (lines_->indexOf(widget) != at) {
      lines_->insertWidget(at, widget);
      setTabOrder(kept.empty() ? static_cast<QWidget*>(this) : kept.back(), widget);
    }
    kept.push_back(widget);
  }
  for (FamilyRow* gone : std::exchange(rows_, std::move(kept))) delete gone;
}

FamilyRow* FamilyList::takeRow(const std::string& id) {
  const auto found = std::ranges::find(rows_, id, &FamilyRow::id);
  if (found == rows_.end()) return new FamilyRow;
  FamilyRow* row = *found;
  rows_.erase(found);
  return row;
}

}  // namespace kestrel
