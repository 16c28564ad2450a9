#pragma once

#include <QPointer>
#include <map>
#include <string>
#include <vector>

#include "KestrelApp/AgentIconResolver.h"
#include "KestrelApp/LiveView.h"
#include "KestrelCore/Agents/AgentType.h"

class QBoxLayout;
class QDialog;
class QPushButton;

namespace kestrel {

class AgentCardView;
class ElidedLabel;
struct AgentsModel;

/// The agent families: which are here, how they report, how they are set up, and what they do.
class AgentsSection final : public LiveView {
 public:
  explicit AgentsSection(ViewContext& context, QWidget* parent = nullptr);

 protected:
  void refresh() override;
  void showEvent(QShowEvent* event) override;

 private:
  void check();
  void showSetup(AgentType agent);
  void showCards(const AgentsModel& model);
  AgentCardView& cardFor(const std::string& key, AgentType agent);

  AgentIconResolver icons_;
  ElidedLabel* checked_;
  QPushButton* check_;
  QBoxLayout* cards_;
  std::map<std::string, AgentCardView*> views_;
  QPointer<QDialog> setup_;
  std::vector<RegistrationPtr> subscriptions_;
};

}  // namespace kestrel
