#pragma once

#include <QWidget>
#include <functional>
#include <optional>

#include "KestrelCore/Presentation/AgentsModel.h"

class QPushButton;

namespace kestrel {

class AgentIconResolver;
class AgentSessionTreeView;
class Badge;
class ElidedLabel;
class IconView;
class StateDot;

/// One agent family: whether it is here and reports, and its sessions.
class AgentCardView final : public QWidget {
 public:
  /// The icons outlive the view.
  AgentCardView(AgentIconResolver& icons, std::function<void()> onSetUp, QWidget* parent = nullptr);

  void setCard(const AgentCard& card);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void showIdentity(const AgentCard& card);

  std::optional<AgentCard> shown_;
  IconView* icon_;
  ElidedLabel* name_;
  StateDot* dot_;
  ElidedLabel* state_;
  Badge* status_;
  ElidedLabel* facts_;
  QPushButton* setUp_;
  AgentSessionTreeView* sessions_;
};

}  // namespace kestrel
