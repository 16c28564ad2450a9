#include "KestrelApp/Sections/BudgetGaugeView.h"

#include <QBoxLayout>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/RingGauge.h"
#include "KestrelApp/Widgets/ToolTipText.h"
#include "KestrelCore/Presentation/BudgetModel.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

Tone toneOf(const BudgetGauge& gauge) {
  if (!gauge.level) return Tone::accent;
  return *gauge.level == LowBudgetLevel::warning ? Tone::warn : Tone::bad;
}

ElidedLabel* makeLine(Tone tone, int lines) {
  auto* label = new ElidedLabel(Theme::TextStyle::caption);
  label->setTone(tone);
  label->setMaximumLines(lines);
  return label;
}

}  // namespace

BudgetGaugeView::BudgetGaugeView(QWidget* parent)
    : QWidget(parent),
      ring_(new RingGauge),
      caption_(makeLine(Tone::normal, 2)),
      detail_(makeLine(Tone::muted, 2)),
      confidence_(makeLine(Tone::muted, 1)) {
  ring_->setFixedSize(ring_->sizeHint());
  caption_->setStrong(true);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(0, 0, 0, 0);
  lines->setSpacing(2);
  lines->addWidget(ring_);
  lines->addSpacing(Theme::kSpaceTiny);
  for (auto* label : {caption_, detail_, confidence_}) lines->addWidget(label);
  lines->addStretch();
}

void BudgetGaugeView::setGauge(const BudgetGauge& gauge) {
  const QString caption = displayText(gauge.caption);
  if (gauge.remaining) {
    ring_->setValue(*gauge.remaining, displayText(gauge.value), toneOf(gauge));
  } else {
    ring_->setUnknown(caption);
  }
  ring_->setAccessibleName(caption);
  caption_->setText(caption);
  caption_->setTone(gauge.remaining ? Tone::normal : Tone::muted);
  detail_->setText(displayText(gauge.detail));
  detail_->setVisible(!gauge.detail.empty());
  confidence_->setText(displayText(gauge.confidence));
  confidence_->setVisible(!gauge.confidence.empty());
  setToolTip(toolTipText(displayText(gauge.tooltip)));
  setAccessibleDescription(displayText(dotted({gauge.value, gauge.caption, gauge.detail, gauge.tooltip})));
}

}  // namespace kestrel
