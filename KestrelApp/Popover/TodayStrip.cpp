#include "KestrelApp/Popover/TodayStrip.h"

#include <QBoxLayout>
#include <cstddef>
#include <vector>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/Sparkline.h"
#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {

TodayStrip::TodayStrip(QWidget* parent)
    : QWidget(parent), line_(new ElidedLabel(Theme::TextStyle::caption)), hours_(new Sparkline) {
  line_->setObjectName(QStringLiteral("today"));
  hours_->setAccessibleName(QStringLiteral("Tokens by hour"));
  auto* title = new ElidedLabel(Theme::TextStyle::caption);
  title->setText(QStringLiteral("Today"));
  title->setTone(Tone::muted);

  auto* texts = new QVBoxLayout;
  texts->setSpacing(Theme::kSpaceTiny / 2);
  texts->addWidget(title);
  texts->addWidget(line_);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(Theme::kSpaceLarge, Theme::kSpaceSmall, Theme::kSpaceLarge, Theme::kSpaceSmall);
  row->setSpacing(Theme::kSpaceMedium);
  row->addLayout(texts, 1);
  row->addWidget(hours_, 0, Qt::AlignBottom);
}

void TodayStrip::setModel(const TodayModel& today) {
  line_->setText(QString::fromStdString(today.line));
  line_->setTone(today.hours ? Tone::normal : Tone::muted);
  setToolTip(toolTipText(QString::fromStdString(today.details)));
  std::vector<double> values;
  if (today.hours) values.assign(today.hours->begin(), today.hours->end());
  hours_->setValues(std::move(values), static_cast<std::size_t>(today.currentHour));
}

}  // namespace kestrel
