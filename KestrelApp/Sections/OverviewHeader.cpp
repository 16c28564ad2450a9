#include "KestrelApp/Sections/OverviewHeader.h"

#include <QBoxLayout>

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"
#include "KestrelCore/Presentation/OverviewModel.h"
#include "KestrelCore/Presentation/Words.h"

namespace kestrel {
namespace {

constexpr int kBlobSize = 2 * Theme::kBlobSize;

}  // namespace

OverviewHeader::OverviewHeader(QWidget* parent)
    : QWidget(parent),
      blob_(new PixelWorkerAnimationView(KestrelBlobAvatarProvider::shared(), kBlobSize)),
      headline_(new ElidedLabel(Theme::TextStyle::figure)),
      reason_(new ElidedLabel(Theme::TextStyle::title)),
      detail_(new ElidedLabel(Theme::TextStyle::body)) {
  headline_->setStrong(true);
  reason_->setMaximumLines(2);
  detail_->setMaximumLines(2);
  detail_->setTone(Tone::muted);
  auto* words = new QVBoxLayout;
  words->setSpacing(Theme::kSpaceTiny);
  words->addStretch();
  words->addWidget(headline_);
  words->addWidget(reason_);
  words->addWidget(detail_);
  words->addStretch();
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(Theme::kSpaceSmall, 0, 0, Theme::kSpaceSmall);
  columns->setSpacing(Theme::kSpaceHuge);
  columns->addWidget(blob_);
  columns->addLayout(words, 1);
}

void OverviewHeader::setModel(const OverviewModel& model) {
  const HeadlineModel& headline = model.headline;
  blob_->setState(headline.mood);
  headline_->setText(displayText(headline.headline));
  headline_->setTone(headline.tone);
  reason_->setText(displayText(headline.reason));
  const QString detail = displayText(dotted({headline.detail, model.hold}));
  detail_->setText(detail);
  detail_->setVisible(!detail.isEmpty());
}

}  // namespace kestrel
