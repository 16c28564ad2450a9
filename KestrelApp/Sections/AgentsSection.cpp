#include "KestrelApp/Sections/AgentsSection.h"

#include <QBoxLayout>
#include <QPushButton>
#include <algorithm>

#include "KestrelApp/AgentSetupSheet.h"
#include "KestrelApp/Sections/AgentCardView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/SectionScrollArea.h"
#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/AgentsModel.h"

namespace kestrel {

AgentsSection::AgentsSection(ViewContext& context, QWidget* parent)
    : LiveView(context, parent),
      checked_(new ElidedLabel(Theme::TextStyle::caption)),
      check_(new QPushButton(QStringLiteral("Check again"))),
      cards_(new QVBoxLayout) {
  auto* title = new ElidedLabel(Theme::TextStyle::title);
  title->setText(QStringLiteral("Agents"));
  title->setStrong(true);
  checked_->setTone(Tone::muted);
  checked_->setTrailing(true);
  connect(check_, &QPushButton::clicked, this, [this] { check(); });

  auto* head = new QHBoxLayout;
  head->setSpacing(Theme::kSpaceMedium);
  head->addWidget(title);
  head->addWidget(checked_, 1);
  head->addWidget(check_);
  cards_->setSpacing(Theme::kSpaceMedium);
  auto* area = new SectionScrollArea;
  area->lines().addLayout(head);
  area->lines().addLayout(cards_);
  area->lines().addStretch();
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->addWidget(area);

  const auto& inspection = context.inspection;
  subscriptions_.push_back(inspection.isChecking().subscribe([this](bool) { requestRefresh(); }));
  subscriptions_.push_back(inspection.result().subscribe([this](const auto&) { requestRefresh(); }));
}

void AgentsSection::showEvent(QShowEvent* event) {
  LiveView::showEvent(event);
  context().inspection.checkOnce(seenAgents(context().coordinator.agentFamilies().get()));
}

void AgentsSection::check() {
  context().inspection.check(seenAgents(context().coordinator.agentFamilies().get()));
  refreshAtOnce();
}

void AgentsSection::showSetup(AgentType agent) {
  delete setup_;
  setup_ = new AgentSetupSheet(context(), agent, this);
  setup_->setAttribute(Qt::WA_DeleteOnClose);
  setup_->open();
}

void AgentsSection::refresh() {
  const AgentsModel model = agentsModel(agentsFacts(context().coordinator, context().inspection));
  checked_->setText(displayText(model.checkedText));
  check_->setEnabled(model.canCheck);
  showCards(model);
}

void AgentsSection::showCards(const AgentsModel& model) {
  std::erase_if(views_, [&model](const auto& view) {
    const bool isGone = std::ranges::find(model.cards, view.first, &AgentCard::key) == model.cards.end();
    if (isGone) view.second->deleteLater();
    return isGone;
  });
  int place = 0;
  for (const AgentCard& card : model.cards) {
    AgentCardView& view = cardFor(card.key, card.agentType);
    if (cards_->indexOf(&view) != place) {
      cards_->removeWidget(&view);
      cards_->insertWidget(place, &view);
    }
    view.setCard(card);
    ++place;
  }
}

AgentCardView& AgentsSection::cardFor(const std::string& key, AgentType agent) {
  AgentCardView*& view = views_[key];
  if (view == nullptr) view = new AgentCardView(icons_, [this, agent] { showSetup(agent); });
  return *view;
}

}  // namespace kestrel
