#include "KestrelApp/Widgets/TitledCard.h"

#include <QBoxLayout>
#include <QPainter>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ElidedLabel.h"

namespace kestrel {

TitledCard::TitledCard(const QString& title, QWidget* parent)
    : QWidget(parent), header_(new QHBoxLayout), lines_(new QVBoxLayout) {
  setAccessibleName(title);
  auto* heading = new ElidedLabel(Theme::TextStyle::body);
  heading->setText(title);
  heading->setStrong(true);
  heading->setTone(Tone::muted);
  header_->setSpacing(Theme::kSpaceMedium);
  header_->addWidget(heading, 1);
  lines_->setSpacing(Theme::kSpaceSmall);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceMedium, Theme::kSpaceLarge, Theme::kSpaceMedium);
  all->setSpacing(Theme::kSpaceSmall);
  all->addLayout(header_);
  all->addLayout(lines_);
  all->addStretch();
}

void TitledCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
