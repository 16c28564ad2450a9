#include "KestrelApp/Sections/PowerFactView.h"

#include <QBoxLayout>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/IconView.h"
#include "KestrelCore/Presentation/PowerModel.h"

namespace kestrel {
namespace {

constexpr int kDetailLines = 3;

}  // namespace

PowerFactView::PowerFactView(Icon icon, QWidget* parent)
    : QWidget(parent),
      icon_(new IconView(icon, Theme::kIconSize)),
      text_(new ElidedLabel(Theme::TextStyle::body)),
      detail_(new ElidedLabel(Theme::TextStyle::caption)) {
  text_->setStrong(true);
  text_->setMaximumLines(2);
  detail_->setTone(Tone::muted);
  detail_->setMaximumLines(kDetailLines);
  auto* words = new QVBoxLayout;
  words->setSpacing(Theme::kSpaceTiny / 2);
  words->addWidget(text_);
  words->addWidget(detail_);
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->setSpacing(Theme::kSpaceSmall);
  columns->addWidget(icon_, 0, Qt::AlignTop);
  columns->addLayout(words, 1);
}

void PowerFactView::setFact(const PowerFact& fact) {
  icon_->setTone(fact.tone);
  text_->setText(displayText(fact.text));
  text_->setTone(fact.tone);
  detail_->setText(displayText(fact.detail));
  detail_->setVisible(!fact.detail.empty());
}

}  // namespace kestrel
