#include "KestrelApp/Sections/TimelineCard.h"

#include <QBoxLayout>
#include <algorithm>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/Rows.h"
#include "KestrelApp/Widgets/TimelineBandView.h"
#include "KestrelApp/Widgets/TimelineSwatch.h"
#include "KestrelApp/Widgets/TitledCard.h"

namespace kestrel {
namespace {

constexpr std::size_t kRows = 7;

void addLegend(QHBoxLayout& header) {
  for (const auto kind :
       {TimelineKind::held, TimelineKind::released, TimelineKind::blocked, TimelineKind::unknown}) {
    auto* word = new ElidedLabel(Theme::TextStyle::caption);
    word->setTone(Tone::muted);
    word->setText(displayText(displayWord(kind)));
    auto* entry = new QHBoxLayout;
    entry->setSpacing(Theme::kSpaceTiny);
    entry->addWidget(new TimelineSwatch(kind));
    entry->addWidget(word);
    header.addLayout(entry);
  }
}

}  // namespace

TimelineRow::TimelineRow(QWidget* parent)
    : QWidget(parent),
      swatch_(new TimelineSwatch(TimelineKind::unknown)),
      text_(new ElidedLabel(Theme::TextStyle::body)) {
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->setSpacing(Theme::kSpaceSmall);
  columns->addWidget(swatch_);
  columns->addWidget(text_, 1);
}

void TimelineRow::setSegment(const TimelineSegment& segment) {
  swatch_->setKind(segment.kind);
  text_->setText(displayText(segment.tooltip));
}

TimelineCard::TimelineCard(QWidget* parent)
    : QWidget(parent), band_(new TimelineBandView), list_(new QVBoxLayout) {
  auto* day = new TitledCard(QStringLiteral("Last 24 hours"));
  band_->setAccessibleName(QStringLiteral("Last 24 hours"));
  addLegend(day->header());
  day->lines().addWidget(band_);
  list_->setContentsMargins(0, Theme::kSpaceTiny, 0, 0);
  list_->setSpacing(Theme::kSpaceSmall);
  day->lines().addLayout(list_);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(day);
}

void TimelineCard::setBand(const TimelineBand& band) {
  band_->setBand(band);
  const std::size_t count = std::min(band.segments.size(), kRows);
  keepRows(rows_, count, *list_, [] { return new TimelineRow; });
  for (std::size_t i = 0; i < count; ++i) rows_[i]->setSegment(band.segments[band.segments.size() - 1 - i]);
}

}  // namespace kestrel
