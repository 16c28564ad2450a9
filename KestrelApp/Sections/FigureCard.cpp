#include "KestrelApp/Sections/FigureCard.h"

#include <QBoxLayout>
#include <QPainter>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/ToolTipText.h"
#include "KestrelCore/Presentation/OverviewModel.h"

namespace kestrel {

FigureCard::FigureCard(QWidget* parent)
    : QWidget(parent),
      value_(new ElidedLabel(Theme::TextStyle::figure)),
      caption_(new ElidedLabel(Theme::TextStyle::caption)) {
  value_->setStrong(true);
  caption_->setTone(Tone::muted);
  caption_->setMaximumLines(2);
  auto* lines = new QVBoxLayout;
  lines->setSpacing(Theme::kSpaceTiny);
  lines->addWidget(value_);
  lines->addWidget(caption_);
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(Theme::kSpaceSmall, Theme::kSpaceMedium, Theme::kSpaceSmall,
                              Theme::kSpaceMedium);
  columns->setSpacing(0);
  // In line with other cards; a long figure may come closer to the other edge.
  columns->addSpacing(Theme::kSpaceSmall);
  columns->addLayout(lines, 1);
}

void FigureCard::setFigure(const OverviewFigure& figure) {
  value_->setText(displayText(figure.value));
  value_->setTone(figure.isKnown ? Tone::normal : Tone::muted);
  caption_->setText(displayText(figure.caption));
  setAccessibleName(displayText(figure.value + " " + figure.caption));
  setToolTip(toolTipText(displayText(figure.tooltip)));
}

void FigureCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
