#include "KestrelApp/Sections/BudgetCardView.h"

#include <QBoxLayout>
#include <QPainter>

#include "KestrelApp/Sections/BudgetGaugeView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/IconView.h"
#include "KestrelApp/Widgets/Separator.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {

BudgetCardView::BudgetCardView(QWidget* parent)
    : QWidget(parent),
      icon_(new IconView(Icon::chip, Theme::kIconSize)),
      name_(new ElidedLabel(Theme::TextStyle::body)),
      model_(new ElidedLabel(Theme::TextStyle::caption)),
      context_(new BudgetGaugeView),
      quota_(new BudgetGaugeView),
      cost_(new ElidedLabel(Theme::TextStyle::body)),
      source_(new ElidedLabel(Theme::TextStyle::caption)) {
  name_->setStrong(true);
  model_->setTone(Tone::muted);
  model_->setTrailing(true);
  source_->setTone(Tone::muted);
  auto* head = new QHBoxLayout;
  head->setSpacing(Theme::kSpaceSmall);
  head->addWidget(icon_);
  head->addWidget(name_);
  head->addWidget(model_, 1);
  auto* gauges = new QHBoxLayout;
  gauges->setSpacing(Theme::kSpaceMedium);
  gauges->addWidget(context_, 1);
  gauges->addWidget(quota_, 1);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceMedium, Theme::kSpaceLarge, Theme::kSpaceMedium);
  lines->setSpacing(Theme::kSpaceMedium);
  lines->addLayout(head);
  lines->addLayout(gauges);
  lines->addStretch();
  lines->addWidget(new Separator);
  auto* sums = new QVBoxLayout;
  sums->setSpacing(2);
  sums->addWidget(cost_);
  sums->addWidget(source_);
  lines->addLayout(sums);
}

void BudgetCardView::setCard(const BudgetCard& card) {
  if (shown_ == card) return;
  setObjectName(displayText(card.key));
  setAccessibleName(displayText(card.name));
  icon_->setAgent(card.agentType);
  name_->setText(displayText(card.name));
  model_->setText(displayText(card.model));
  context_->setGauge(card.context);
  quota_->setGauge(card.quota);
  cost_->setText(displayText(dotted({card.cost, card.costToday.value_or("")})));
  source_->setText(displayText(card.source));
  shown_ = card;
}

void BudgetCardView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
