#include "KestrelApp/Popover/FamilyRow.h"

#include <QBoxLayout>
#include <QEvent>
#include <QFocusEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/Badge.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/Gauge.h"
#include "KestrelApp/Widgets/IconView.h"
#include "KestrelApp/Widgets/StateDot.h"
#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {

FamilyRow::FamilyRow(QWidget* parent)
    : QWidget(parent),
      dot_(new StateDot),
      icon_(new IconView(Icon::chip, Theme::kIconSize)),
      name_(new ElidedLabel(Theme::TextStyle::body)),
      subtitle_(new ElidedLabel(Theme::TextStyle::caption)),
      left_(new ElidedLabel(Theme::TextStyle::caption)),
      gauge_(new Gauge),
      budget_(new ElidedLabel(Theme::TextStyle::caption)),
      alert_(new Badge) {
  setFocusPolicy(Qt::TabFocus);
  name_->setStrong(true);
  subtitle_->setTone(Tone::muted);
  subtitle_->setTrailing(true);
  left_->setStrong(true);
  left_->setTrailing(true);
  budget_->setTone(Tone::muted);
  gauge_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);

  auto* upper = new QHBoxLayout;
  upper->setSpacing(Theme::kSpaceSmall);
  upper->addWidget(dot_);
  upper->addWidget(icon_);
  upper->addWidget(name_);
  upper->addWidget(subtitle_, 1);
  upper->addWidget(left_);
  auto* lower = new QHBoxLayout;
  lower->setSpacing(Theme::kSpaceSmall);
  lower->addSpacing(Theme::kDotSize + Theme::kSpaceSmall);
  lower->addWidget(gauge_);
  lower->addWidget(budget_, 1);
  lower->addWidget(alert_);
  auto* lines = new QVBoxLayout(this);
  lines->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceTiny, Theme::kSpaceLarge, Theme::kSpaceTiny);
  lines->setSpacing(Theme::kSpaceTiny);
  lines->addLayout(upper);
  lines->addLayout(lower);
}

void FamilyRow::setModel(const PopoverRow& row) {
  if (row == shown_) return;
  shown_ = row;
  setObjectName(QString::fromStdString(row.id));
  setAccessibleName(QString::fromStdString(row.name));
  setAccessibleDescription(QString::fromStdString(row.details));
  dot_->setState(row.state);
  icon_->setAgent(row.agent);
  name_->setText(QString::fromStdString(row.name));
  subtitle_->setText(QString::fromStdString(row.subtitle));
  budget_->setText(QString::fromStdString(row.budgetLine));
  alert_->setText(QString::fromStdString(row.alert), row.alertTone);
  alert_->setVisible(!row.alert.empty());
  showGauge(row);
}

void FamilyRow::showGauge(const PopoverRow& row) {
  left_->setText(QString::fromStdString(row.leftText));
  left_->setTone(row.tone == Tone::accent ? Tone::normal : row.tone);
  left_->setVisible(row.left.has_value());
  gauge_->setVisible(row.left.has_value());
  if (row.left) gauge_->setValue(*row.left, row.tone);
}

bool FamilyRow::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip) {
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       toolTipText(QString::fromStdString(shown_.details)), this);
    return true;
  }
  if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
  return QWidget::event(event);
}

void FamilyRow::paintEvent(QPaintEvent*) {
  if (!hasFocus()) return;
  QPainter painter(this);
  const QRectF area = QRectF(rect()).adjusted(Theme::kSpaceSmall, 0, -Theme::kSpaceSmall, 0);
  Theme::of(*this).drawFocusRing(painter, area, Theme::kRadius);
}

}  // namespace kestrel
