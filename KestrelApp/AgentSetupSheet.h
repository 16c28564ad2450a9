#pragma once

#include <QDialog>

class QStackedWidget;

namespace kestrel {

struct AgentSetupModel;

/// How an agent is made to report: texts to paste, one way at a time where there are several.
class AgentSetupSheet final : public QDialog {
 public:
  explicit AgentSetupSheet(const AgentSetupModel& model, QWidget* parent = nullptr);

 private:
  QWidget* makeChoice(const AgentSetupModel& model);

  QStackedWidget* snippets_;
};

}  // namespace kestrel
