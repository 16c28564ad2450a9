#pragma once

#include <QAbstractItemModel>
#include <memory>
#include <vector>

#include "KestrelCore/Presentation/AgentsModel.h"

namespace kestrel {

/// Hosts and their sessions as a tree of one column. A row is known by its key, so that whatever refers to it
/// stays with it while others come, go and move.
class AgentSessionTreeModel final : public QAbstractItemModel {
 public:
  explicit AgentSessionTreeModel(QObject* parent = nullptr);
  ~AgentSessionTreeModel() override;

  void setHosts(const std::vector<AgentHostRow>& hosts);

  /// Null unless the index is a host's.
  [[nodiscard]] const AgentHostRow* host(const QModelIndex& index) const;
  /// Null unless the index is a session's.
  [[nodiscard]] const AgentSessionRow* session(const QModelIndex& index) const;

  [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent) const override;
  using QObject::parent;
  [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
  [[nodiscard]] int rowCount(const QModelIndex& parent) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  /// Of one parent: what is gone goes, what is new or elsewhere gets its place, what differs is told.
  template <typename Rows, typename NewRows>
  void update(Rows& rows, const NewRows& wanted, const QModelIndex& parent);

  /// At addresses of their own, which name the parents of their sessions.
  std::vector<std::unique_ptr<AgentHostRow>> hosts_;
};

}  // namespace kestrel
