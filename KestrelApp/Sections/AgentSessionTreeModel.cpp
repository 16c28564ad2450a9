#include "KestrelApp/Sections/AgentSessionTreeModel.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ToolTipText.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

const std::string& keyOf(const AgentSessionRow& row) {
  return row.key;
}

const std::string& keyOf(const std::unique_ptr<AgentHostRow>& row) {
  return row->key;
}

const std::string& keyOf(const AgentHostRow& row) {
  return row.key;
}

AgentSessionRow rowFrom(const AgentSessionRow& wanted, const AgentSessionRow*) {
  return wanted;
}

/// The sessions follow when the row has its place.
std::unique_ptr<AgentHostRow> rowFrom(const AgentHostRow& wanted, const std::unique_ptr<AgentHostRow>*) {
  return std::make_unique<AgentHostRow>(AgentHostRow{wanted.key, wanted.name, {}});
}

/// Whether it changed.
bool assign(AgentSessionRow& row, const AgentSessionRow& wanted) {
  if (row == wanted) return false;
  row = wanted;
  return true;
}

bool assign(std::unique_ptr<AgentHostRow>& row, const AgentHostRow& wanted) {
  if (row->name == wanted.name) return false;
  row->name = wanted.name;
  return true;
}

std::string details(const AgentSessionRow& row) {
  std::string text = row.title;
  for (const auto* part : {&row.directory, &row.age, &row.lastEvent, &row.confidence}) {
    if (!part->empty()) text += "\n" + *part;
  }
  return text;
}

}  // namespace

AgentSessionTreeModel::AgentSessionTreeModel(QObject* parent) : QAbstractItemModel(parent) {}

AgentSessionTreeModel::~AgentSessionTreeModel() = default;

template <typename Rows, typename NewRows>
void AgentSessionTreeModel::update(Rows& rows, const NewRows& wanted, const QModelIndex& parent) {
  std::unordered_set<std::string> keys;
  for (const auto& row : wanted) keys.insert(keyOf(row));
  for (int i = static_cast<int>(rows.size()) - 1; i >= 0; --i) {
    if (keys.contains(keyOf(rows[static_cast<std::size_t>(i)]))) continue;
    beginRemoveRows(parent, i, i);
    rows.erase(rows.begin() + i);
    endRemoveRows();
  }
  for (int i = 0; i < static_cast<int>(wanted.size()); ++i) {
    const auto& target = wanted[static_cast<std::size_t>(i)];
    const auto isTarget = [&target](const auto& row) { return keyOf(row) == keyOf(target); };
    const auto found = std::find_if(rows.begin() + i, rows.end(), isTarget);
    const int from = static_cast<int>(found - rows.begin());
    if (found == rows.end()) {
      beginInsertRows(parent, i, i);
      rows.insert(rows.begin() + i, rowFrom(target, rows.data()));
      endInsertRows();
    } else if (from != i) {
      beginMoveRows(parent, from, from, parent, i);
      std::rotate(rows.begin() + i, found, found + 1);
      endMoveRows();
    }
    if (assign(rows[static_cast<std::size_t>(i)], target)) {
      const QModelIndex changed = index(i, 0, parent);
      emit dataChanged(changed, changed);
    }
  }
}

void AgentSessionTreeModel::setHosts(const std::vector<AgentHostRow>& hosts) {
  update(hosts_, hosts, {});
  for (std::size_t i = 0; i < hosts_.size(); ++i) {
    update(hosts_[i]->sessions, hosts[i].sessions, index(static_cast<int>(i), 0, {}));
  }
}

const AgentHostRow* AgentSessionTreeModel::host(const QModelIndex& index) const {
  if (!index.isValid() || index.internalPointer() != nullptr) return nullptr;
  return hosts_[static_cast<std::size_t>(index.row())].get();
}

const AgentSessionRow* AgentSessionTreeModel::session(const QModelIndex& index) const {
  const auto* host = static_cast<const AgentHostRow*>(index.internalPointer());
  return host == nullptr ? nullptr : &host->sessions[static_cast<std::size_t>(index.row())];
}

QModelIndex AgentSessionTreeModel::index(int row, int column, const QModelIndex& parent) const {
  if (row < 0 || column != 0 || row >= rowCount(parent)) return {};
  if (!parent.isValid()) return createIndex(row, column, nullptr);
  return createIndex(row, column, hosts_[static_cast<std::size_t>(parent.row())].get());
}

QModelIndex AgentSessionTreeModel::parent(const QModelIndex& child) const {
  const auto* host = static_cast<const AgentHostRow*>(child.internalPointer());
  if (host == nullptr) return {};
  const auto found = std::ranges::find(hosts_, host, &std::unique_ptr<AgentHostRow>::get);
  return createIndex(static_cast<int>(found - hosts_.begin()), 0, nullptr);
}

int AgentSessionTreeModel::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return static_cast<int>(hosts_.size());
  const AgentHostRow* row = host(parent);
  return row == nullptr ? 0 : static_cast<int>(row->sessions.size());
}

int AgentSessionTreeModel::columnCount(const QModelIndex&) const {
  return 1;
}

QVariant AgentSessionTreeModel::data(const QModelIndex& index, int role) const {
  if (const AgentHostRow* row = host(index)) {
    if (role == Qt::DisplayRole || role == Qt::AccessibleTextRole) return displayText(row->name);
    return {};
  }
  const AgentSessionRow* row = session(index);
  if (row == nullptr) return {};
  switch (role) {
    case Qt::DisplayRole:
      return displayText(row->title);
    case Qt::AccessibleTextRole:
      return displayText(
          dotted({row->title, row->stateText, row->directory, row->age, row->lastEvent, row->confidence}));
    case Qt::ToolTipRole:
      return toolTipText(displayText(details(*row)));
    default:
      return {};
  }
}

}  // namespace kestrel
