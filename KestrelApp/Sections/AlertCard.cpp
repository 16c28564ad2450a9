#include "KestrelApp/Sections/AlertCard.h"

#include <QBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <utility>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/IconView.h"

namespace kestrel {

AlertCard::AlertCard(Dismiss onDismiss, QWidget* parent)
    : QWidget(parent),
      icon_(new IconView(Icon::warning, Theme::kIconSize)),
      title_(new ElidedLabel(Theme::TextStyle::body)),
      detail_(new ElidedLabel(Theme::TextStyle::caption)),
      dismiss_(new QPushButton(QStringLiteral("Dismiss"))) {
  detail_->setTone(Tone::muted);
  QObject::connect(dismiss_, &QPushButton::clicked, this,
                   [this, dismiss = std::move(onDismiss)] { dismiss(key_); });
  auto* words = new QVBoxLayout;
  words->setSpacing(Theme::kSpaceTiny / 2);
  words->addWidget(title_);
  words->addWidget(detail_);
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(Theme::kSpaceMedium, Theme::kSpaceMedium, Theme::kSpaceMedium,
                              Theme::kSpaceMedium);
  columns->setSpacing(Theme::kSpaceMedium);
  columns->addSpacing(Theme::kSpaceTiny);
  columns->addWidget(icon_);
  columns->addLayout(words, 1);
  columns->addWidget(dismiss_);
}

void AlertCard::setAlert(const OverviewAlert& alert) {
  key_ = alert.key;
  icon_->setTone(key_.level == LowBudgetLevel::warning ? Tone::warn : Tone::bad);
  title_->setText(displayText(alert.title));
  detail_->setText(displayText(alert.detail));
  dismiss_->setAccessibleName(QStringLiteral("Dismiss: ") + displayText(alert.title));
}

void AlertCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  Theme::of(*this).drawCard(painter, rect());
}

}  // namespace kestrel
