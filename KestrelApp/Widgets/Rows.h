#pragma once

#include <QBoxLayout>
#include <QWidget>
#include <cstddef>
#include <vector>

namespace kestrel {

/// Makes as many rows as are wanted at the end of a layout, and keeps those that are there. A row that goes
/// may be the one whose button was just pressed.
template <typename Row, typename Make>
void keepRows(std::vector<Row*>& rows, std::size_t wanted, QBoxLayout& layout, Make make) {
  while (rows.size() > wanted) {
    Row* row = rows.back();
    rows.pop_back();
    layout.removeWidget(row);
    row->hide();
    row->deleteLater();
  }
  while (rows.size() < wanted) {
    rows.push_back(make());
    layout.addWidget(rows.back());
  }
}

}  // namespace kestrel
