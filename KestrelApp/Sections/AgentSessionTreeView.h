#pragma once

#include <QTreeView>
#include <vector>

namespace kestrel {

struct AgentHostRow;
class AgentIconResolver;
class AgentSessionTreeModel;

/// A family's sessions below the applications that host them. It is as high as its rows, up to a limit from
/// which on it scrolls; what is selected, open and in sight stays so while sessions come and go.
class AgentSessionTreeView final : public QTreeView {
 public:
  /// The icons outlive the view.
  explicit AgentSessionTreeView(AgentIconResolver& icons, QWidget* parent = nullptr);

  void setHosts(const std::vector<AgentHostRow>& hosts);
  [[nodiscard]] const AgentSessionTreeModel& sessions() const { return *model_; }

 protected:
  void drawBranches(QPainter* painter, const QRect& area, const QModelIndex& index) const override;
  void changeEvent(QEvent* event) override;

 private:
  void fitHeight();

  AgentSessionTreeModel* model_;
};

}  // namespace kestrel
