#include "KestrelApp/Popover/PopoverHeader.h"

#include <QBoxLayout>

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/ToggleSwitch.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {

PopoverHeader::PopoverHeader(QWidget* parent)
    : QWidget(parent),
      blob_(new PixelWorkerAnimationView(KestrelBlobAvatarProvider::shared(), Theme::kBlobSize)),
      headline_(new ElidedLabel(Theme::TextStyle::title)),
      reason_(new ElidedLabel(Theme::TextStyle::body)),
      detail_(new ElidedLabel(Theme::TextStyle::caption)),
      master_(new ToggleSwitch(QStringLiteral("Protection"))) {
  headline_->setStrong(true);
  headline_->setObjectName(QStringLiteral("headline"));
  reason_->setMaximumLines(2);
  reason_->setObjectName(QStringLiteral("reason"));
  detail_->setTone(Tone::muted);
  detail_->setObjectName(QStringLiteral("detail"));
  master_->setObjectName(QStringLiteral("master"));
  master_->setToolTip(QStringLiteral("Keep this computer awake while agents work"));

  auto* texts = new QVBoxLayout;
  texts->setSpacing(Theme::kSpaceTiny / 2);
  texts->addStretch();
  texts->addWidget(headline_);
  texts->addWidget(reason_);
  texts->addWidget(detail_);
  texts->addStretch();
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceMedium, Theme::kSpaceMedium, Theme::kSpaceMedium);
  row->setSpacing(Theme::kSpaceMedium);
  row->addWidget(blob_, 0, Qt::AlignVCenter);
  row->addLayout(texts, 1);
  row->addWidget(master_, 0, Qt::AlignVCenter);

  connect(master_, &QAbstractButton::clicked, this, [this](bool isOn) { onMasterSwitched(isOn); });
}

void PopoverHeader::setModel(const HeadlineModel& headline, bool isMasterOn) {
  blob_->setState(headline.mood);
  headline_->setText(QString::fromStdString(headline.headline));
  headline_->setTone(headline.tone == Tone::muted ? Tone::normal : headline.tone);
  reason_->setText(QString::fromStdString(headline.reason));
  detail_->setText(QString::fromStdString(headline.detail));
  detail_->setVisible(!headline.detail.empty());
  master_->setChecked(isMasterOn);
}

}  // namespace kestrel
