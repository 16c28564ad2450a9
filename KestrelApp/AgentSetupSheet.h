#pragma once

#include <QDialog>
#include <vector>

#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Support/Executor.h"

class QPushButton;
class QStackedWidget;

namespace kestrel {

struct AgentSetupModel;
class ElidedLabel;
struct ViewContext;

/// How an agent is made to report: texts to paste, one way at a time where there are several, and a button to
/// see whether it worked. Main thread.
class AgentSetupSheet final : public QDialog {
 public:
  /// The context outlives the sheet.
  AgentSetupSheet(ViewContext& context, AgentType agent, QWidget* parent = nullptr);
  AgentSetupSheet(ViewContext& context, AgentType agent, const AgentSetupModel& model,
                  QWidget* parent = nullptr);

 private:
  QWidget* makeChoice(const AgentSetupModel& model);
  QLayout* makeFooter(bool canBeSetUp);
  void check();
  void showStatus();

  ViewContext& context_;
  const AgentType agent_;
  QStackedWidget* snippets_;
  ElidedLabel* status_;
  QPushButton* check_;
  std::vector<RegistrationPtr> subscriptions_;
};

}  // namespace kestrel
