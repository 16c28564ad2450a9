#include "KestrelApp/AgentSetupSheet.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QPushButton>
#include <QStackedWidget>
#include <algorithm>

#include "KestrelApp/Sections/SetupSnippetView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/VerticalScrollArea.h"
#include "KestrelApp/Widgets/WrappedLabel.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/AgentSetupModel.h"
#include "KestrelCore/Presentation/AgentsModel.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

constexpr int kWidth = 27 * Theme::kSpaceHuge;
constexpr int kHeight = 26 * Theme::kSpaceHuge;

}  // namespace

AgentSetupSheet::AgentSetupSheet(ViewContext& context, AgentType agent, QWidget* parent)
    : AgentSetupSheet(context, agent, agentSetupModel(context.inspection, agent), parent) {}

AgentSetupSheet::AgentSetupSheet(ViewContext& context, AgentType agent, const AgentSetupModel& model,
                                 QWidget* parent)
    : QDialog(parent),
      context_(context),
      agent_(agent),
      snippets_(new QStackedWidget),
      status_(new ElidedLabel(Theme::TextStyle::caption)),
      check_(new QPushButton(QStringLiteral("Check again"))) {
  setWindowTitle(displayText(model.title));
  setModal(true);
  auto* title = new ElidedLabel(Theme::TextStyle::title);
  title->setText(displayText(model.title));
  title->setStrong(true);
  auto* introduction = new WrappedLabel(Theme::TextStyle::body);
  introduction->setText(displayText(model.introduction));
  introduction->setMuted(true);
  for (const auto& snippet : model.snippets) {
    snippets_->addWidget(new VerticalScrollArea(new SetupSnippetView(snippet)));
  }

  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(Theme::kSpaceHuge, Theme::kSpaceHuge, Theme::kSpaceHuge, Theme::kSpaceLarge);
  lines->setSpacing(Theme::kSpaceMedium);
  lines->addWidget(title);
  lines->addWidget(introduction);
  if (model.snippets.size() > 1) lines->addWidget(makeChoice(model));
  setMinimumWidth(kWidth);
  if (model.snippets.empty()) {
    snippets_->hide();
    lines->addStretch();
  } else {
    resize(kWidth, kHeight);
  }
  lines->addWidget(snippets_, 1);
  lines->addLayout(makeFooter(!model.snippets.empty()));
}

QLayout* AgentSetupSheet::makeFooter(bool canBeSetUp) {
  auto* close = new QPushButton(QStringLiteral("Close"));
  close->setDefault(true);
  check_->setAutoDefault(false);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  connect(check_, &QPushButton::clicked, this, [this] { check(); });
  auto* footer = new QHBoxLayout;
  footer->setSpacing(Theme::kSpaceMedium);
  footer->addWidget(check_);
  footer->addWidget(status_, 1);
  footer->addWidget(close);
  check_->setVisible(canBeSetUp);
  status_->setObjectName(QStringLiteral("status"));
  if (canBeSetUp) {
    const auto& inspection = context_.inspection;
    subscriptions_.push_back(inspection.isChecking().subscribe([this](bool) { showStatus(); }));
    subscriptions_.push_back(inspection.result().subscribe([this](const auto&) { showStatus(); }));
    showStatus();
  }
  return footer;
}

void AgentSetupSheet::check() {
  context_.inspection.check(seenAgents(context_.coordinator.agentFamilies().get()));
}

void AgentSetupSheet::showStatus() {
  const AgentsModel model = agentsModel(agentsFacts(context_.coordinator, context_.inspection));
  check_->setEnabled(model.canCheck);
  const auto card = std::ranges::find(model.cards, agent_, &AgentCard::agentType);
  if (!model.canCheck) {
    status_->setText(displayText(model.checkedText));
    status_->setTone(Tone::muted);
  } else if (card != model.cards.end()) {
    status_->setText(displayText(dotted({card->statusText, model.checkedText})));
    status_->setTone(card->isIntegrationActive ? Tone::good : Tone::muted);
  }
}

QWidget* AgentSetupSheet::makeChoice(const AgentSetupModel& model) {
  auto* choice = new QWidget;
  auto* row = new QHBoxLayout(choice);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(Theme::kSpaceSmall);
  auto* group = new QButtonGroup(choice);
  for (const auto& snippet : model.snippets) {
    auto* button = new QPushButton(displayText(snippet.title));
    button->setCheckable(true);
    button->setAutoDefault(false);
    group->addButton(button, static_cast<int>(group->buttons().size()));
    row->addWidget(button);
  }
  row->addStretch();
  group->button(0)->setChecked(true);
  connect(group, &QButtonGroup::idToggled, snippets_, [this](int id, bool isChosen) {
    if (isChosen) snippets_->setCurrentIndex(id);
  });
  return choice;
}

}  // namespace kestrel
