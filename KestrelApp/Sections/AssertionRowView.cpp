#include "KestrelApp/Sections/AssertionRowView.h"

#include <QBoxLayout>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/Badge.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelCore/Presentation/PowerModel.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {

AssertionRowView::AssertionRowView(QWidget* parent)
    : QWidget(parent),
      service_(new ElidedLabel(Theme::TextStyle::body)),
      detail_(new ElidedLabel(Theme::TextStyle::caption)),
      state_(new Badge) {
  detail_->setTone(Tone::muted);
  auto* words = new QVBoxLayout;
  words->setSpacing(Theme::kSpaceTiny / 2);
  words->addWidget(service_);
  words->addWidget(detail_);
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->setSpacing(Theme::kSpaceMedium);
  // In line with the words of the fact above, which has an icon.
  columns->addSpacing(Theme::kIconSize + Theme::kSpaceSmall);
  columns->addLayout(words, 1);
  columns->addWidget(state_);
}

void AssertionRowView::setRow(const AssertionRow& row) {
  service_->setText(displayText(row.service));
  detail_->setText(displayText(dotted({row.purpose, row.detail})));
  state_->setText(displayText(row.stateText), row.tone);
}

}  // namespace kestrel
