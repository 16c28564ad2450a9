#include "KestrelApp/Sections/AgentCardView.h"

#include <QBoxLayout>
#include <QPainter>
#include <QPushButton>

#include "KestrelApp/Sections/AgentSessionTreeView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/Badge.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/IconView.h"
#include "KestrelApp/Widgets/StateDot.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

constexpr int kIconSize = 2 * Theme::kIconSize;

QBoxLayout* makeRow(QBoxLayout::Direction direction, int spacing) {
  auto* row = new QBoxLayout(direction);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(spacing);
  return row;
}

Tone toneOf(const AgentCard& card) {
  if (card.isIntegrationActive) return Tone::good;
  if (!card.isInstalled) return Tone::muted;
  return card.canBeSetUp ? Tone::warn : Tone::normal;
}

}  // namespace

AgentCardView::AgentCardView(AgentIconResolver& icons, std::function<void()> onSetUp, QWidget* parent)
    : QWidget(parent),
      icon_(new IconView(Icon::chip, kIconSize)),
      name_(new ElidedLabel(Theme::TextStyle::title)),
      dot_(new StateDot),
      state_(new ElidedLabel(Theme::TextStyle::body)),
      status_(new Badge),
      facts_(new ElidedLabel(Theme::TextStyle::caption)),
      setUp_(new QPushButton(QStringLiteral("Set up…"))),
      sessions_(new AgentSessionTreeView(icons)) {
  name_->setStrong(true);
  state_->setTone(Tone::muted);
  facts_->setTone(Tone::muted);
  connect(setUp_, &QPushButton::clicked, this, [onSetUp = std::move(onSetUp)] { onSetUp(); });

  auto* upper = makeRow(QBoxLayout::LeftToRight, Theme::kSpaceSmall);
  upper->addWidget(name_);
  upper->addSpacing(Theme::kSpaceTiny);
  upper->addWidget(dot_);
  upper->addWidget(state_, 1);
  auto* lower = makeRow(QBoxLayout::LeftToRight, Theme::kSpaceSmall);
  lower->addWidget(status_);
  lower->addWidget(facts_, 1);
  auto* texts = makeRow(QBoxLayout::TopToBottom, Theme::kSpaceTiny);
  texts->addLayout(upper);
  texts->addLayout(lower);
  auto* head = makeRow(QBoxLayout::LeftToRight, Theme::kSpaceMedium);
  head->addWidget(icon_);
  head->addLayout(texts, 1);
  head->addWidget(setUp_);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceMedium, Theme::kSpaceLarge, Theme::kSpaceMedium);
  lines->setSpacing(Theme::kSpaceSmall);
  lines->addLayout(head);
  lines->addWidget(sessions_);
}

void AgentCardView::setCard(const AgentCard& card) {
  if (shown_ == card) return;
  showIdentity(card);
  sessions_->setHosts(card.hosts);
  sessions_->setVisible(!card.hosts.empty());
  shown_ = card;
}

void AgentCardView::showIdentity(const AgentCard& card) {
  const QString name = displayText(card.name);
  setObjectName(displayText(card.key));
  setAccessibleName(name);
  setAccessibleDescription(displayText(dotted({card.stateText, card.statusText, card.detection})));
  icon_->setAgent(card.agentType);
  name_->setText(name);
  dot_->setState(card.state);
  dot_->setVisible(!card.hosts.empty());
  state_->setText(displayText(dotted({card.stateText, card.activity})));
  status_->setText(displayText(card.statusText), toneOf(card));
  status_->setVisible(!card.statusText.empty());
  facts_->setText(displayText(dotted({card.version.value_or(""), card.detection})));
  setUp_->setVisible(card.canBeSetUp);
  setUp_->setAccessibleName(QStringLiteral("Set up %1").arg(name));
}

void AgentCardView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
