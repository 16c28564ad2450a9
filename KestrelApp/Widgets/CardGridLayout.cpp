#include "KestrelApp/Widgets/CardGridLayout.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace kestrel {

CardGridLayout::CardGridLayout(int minimumColumnWidth, int spacing)
    : minimumColumnWidth_(minimumColumnWidth) {
  setContentsMargins(0, 0, 0, 0);
  setSpacing(spacing);
}

CardGridLayout::~CardGridLayout() = default;

void CardGridLayout::addItem(QLayoutItem* item) {
  items_.emplace_back(item);
}

QLayoutItem* CardGridLayout::itemAt(int index) const {
  return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* CardGridLayout::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  const auto position = items_.begin() + index;
  QLayoutItem* item = position->release();
  items_.erase(position);
  return item;
}

int CardGridLayout::columnsFor(int width) const {
  const int fitting = (width + spacing()) / (minimumColumnWidth_ + spacing());
  const int columns = std::clamp(fitting, 1, std::max(count(), 1));
  // As many in each row as can be, rather than one that is left over.
  const int rows = (count() + columns - 1) / columns;
  return rows > 1 ? (count() + rows - 1) / rows : columns;
}

int CardGridLayout::columnWidth(int width, int columns) const {
  return (width - (columns - 1) * spacing()) / columns;
}

int CardGridLayout::rowHeight(std::size_t first, int columns, int columnWidth) const {
  int height = 0;
  const std::size_t end = std::min(items_.size(), first + static_cast<std::size_t>(columns));
  for (std::size_t i = first; i < end; ++i) {
    const auto& item = items_[i];
    const int own = item->hasHeightForWidth() ? item->heightForWidth(columnWidth) : item->sizeHint().height();
    height = std::max(height, own);
  }
  return height;
}

QSize CardGridLayout::sizeHint() const {
  const int columns = std::max(count(), 1);
  const int width = columns * minimumColumnWidth_ + (columns - 1) * spacing();
  return {width, rowHeight(0, columns, minimumColumnWidth_)};
}

QSize CardGridLayout::minimumSize() const {
  QSize size;
  for (const auto& item : items_) size = size.expandedTo(item->minimumSize());
  return size;
}

int CardGridLayout::heightForWidth(int width) const {
  const int columns = columnsFor(width);
  int height = 0;
  for (std::size_t i = 0; i < items_.size(); i += static_cast<std::size_t>(columns)) {
    if (i > 0) height += spacing();
    height += rowHeight(i, columns, columnWidth(width, columns));
  }
  return height;
}

void CardGridLayout::setGeometry(const QRect& area) {
  QLayout::setGeometry(area);
  const int columns = columnsFor(area.width());
  const int width = columnWidth(area.width(), columns);
  const auto direction = parentWidget() != nullptr ? parentWidget()->layoutDirection() : Qt::LeftToRight;
  int y = area.y();
  for (std::size_t i = 0; i < items_.size(); i += static_cast<std::size_t>(columns)) {
    const int height = rowHeight(i, columns, width);
    for (int column = 0; column < columns && i + static_cast<std::size_t>(column) < items_.size(); ++column) {
      const QRect cell(area.x() + column * (width + spacing()), y, width, height);
      items_[i + static_cast<std::size_t>(column)]->setGeometry(QStyle::visualRect(direction, area, cell));
    }
    y += height + spacing();
  }
}

}  // namespace kestrel
