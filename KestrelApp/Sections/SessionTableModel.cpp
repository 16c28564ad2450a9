#include "KestrelApp/Sections/SessionTableModel.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {
namespace {

SessionColumn columnOf(int section) {
  return static_cast<SessionColumn>(section);
}

bool isNumber(SessionColumn column) {
  return column == SessionColumn::tokens || column == SessionColumn::cost;
}

QVariant alignmentOf(SessionColumn column) {
  // Both kinds follow the direction of the layout.
  return static_cast<int>((isNumber(column) ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

}  // namespace

SessionTableModel::SessionTableModel(const Clock& clock, QObject* parent)
    : QAbstractTableModel(parent), clock_(clock) {}

void SessionTableModel::load(std::vector<SessionUsageRecord> records) {
  growTo(std::min(records.size(), UsageSessionTable::kMaximumRows));
  rearrange([&] { table_.load(std::move(records)); });
  shrinkTo(table_.rowCount());
}

bool SessionTableModel::refresh(const std::vector<SessionUsageRecord>& recent) {
  bool isComplete = true;
  // As if all of them were new: what moves down needs its place at once.
  growTo(table_.rowCount() + recent.size());
  rearrange([&] { isComplete = table_.refresh(recent); });
  shrinkTo(table_.rowCount());
  return isComplete;
}

void SessionTableModel::sort(int column, Qt::SortOrder order) {
  // A header without a mark.
  if (column < 0) return;
  rearrange([&] { table_.sortBy(columnOf(column), order == Qt::AscendingOrder); });
}

void SessionTableModel::growTo(std::size_t rows) {
  const int wanted = static_cast<int>(rows);
  if (wanted <= rows_) return;
  beginInsertRows({}, rows_, wanted - 1);
  rows_ = wanted;
  endInsertRows();
}

void SessionTableModel::shrinkTo(std::size_t rows) {
  const int wanted = static_cast<int>(rows);
  if (wanted >= rows_) return;
  beginRemoveRows({}, wanted, rows_ - 1);
  rows_ = wanted;
  endRemoveRows();
}

void SessionTableModel::rearrange(const std::function<void()>& apply) {
  emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
  const QModelIndexList before = persistentIndexList();
  std::vector<std::string> keys;
  std::unordered_map<std::string, int> rows;
  for (const QModelIndex& index : before) {
    const auto row = static_cast<std::size_t>(index.row());
    keys.push_back(row < table_.rowCount() ? table_.key(row) : std::string());
    rows.emplace(keys.back(), -1);
  }
  apply();
  for (std::size_t row = 0; row < table_.rowCount() && !rows.empty(); ++row) {
    const auto found = rows.find(table_.key(row));
    if (found != rows.end()) found->second = static_cast<int>(row);
  }
  QModelIndexList after;
  for (qsizetype i = 0; i < before.size(); ++i) {
    after.append(index(rows[keys[static_cast<std::size_t>(i)]], before[i].column(), {}));
  }
  changePersistentIndexList(before, after);
  emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

int SessionTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int SessionTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(UsageSessionTable::kColumns);
}

QVariant SessionTableModel::data(const QModelIndex& index, int role) const {
  // While it changes the table may have fewer rows than were told.
  if (!index.isValid() || static_cast<std::size_t>(index.row()) >= table_.rowCount()) return {};
  const auto row = static_cast<std::size_t>(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return displayText(table_.text(row, columnOf(index.column()), clock_.now()));
    case Qt::ToolTipRole:
      return toolTipText(displayText(table_.tooltip(row)));
    case Qt::TextAlignmentRole:
      return alignmentOf(columnOf(index.column()));
    default:
      return {};
  }
}

QVariant SessionTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::DisplayRole) return displayText(UsageSessionTable::title(columnOf(section)));
  if (role == Qt::TextAlignmentRole) return alignmentOf(columnOf(section));
  return {};
}

}  // namespace kestrel
