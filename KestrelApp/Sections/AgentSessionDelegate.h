#pragma once

#include <QStyledItemDelegate>

namespace kestrel {

class AgentIconResolver;
class AgentSessionTreeModel;
struct AgentHostRow;
struct AgentSessionRow;

/// Draws a host as one line, and a session as two: what it is and what it does, then where and since when.
class AgentSessionDelegate final : public QStyledItemDelegate {
 public:
  /// Both outlive the delegate.
  AgentSessionDelegate(const AgentSessionTreeModel& model, AgentIconResolver& icons,
                       QObject* parent = nullptr);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

 private:
  void paintHost(QPainter& painter, const QStyleOptionViewItem& option, const AgentHostRow& host) const;
  void paintSession(QPainter& painter, const QStyleOptionViewItem& option,
                    const AgentSessionRow& session) const;

  const AgentSessionTreeModel& model_;
  AgentIconResolver& icons_;
};

}  // namespace kestrel
