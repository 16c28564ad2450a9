#pragma once

#include <QWidget>
#include <vector>

class QVBoxLayout;

namespace kestrel {

class ElidedLabel;
class TimelineBandView;
class TimelineSwatch;
struct TimelineBand;
struct TimelineSegment;

/// One time of the last day in words, beside its pattern.
class TimelineRow final : public QWidget {
 public:
  explicit TimelineRow(QWidget* parent = nullptr);

  void setSegment(const TimelineSegment& segment);

 private:
  TimelineSwatch* swatch_;
  ElidedLabel* text_;
};

/// The last day: a band, what its patterns mean, and its latest parts in words.
class TimelineCard final : public QWidget {
 public:
  explicit TimelineCard(QWidget* parent = nullptr);

  void setBand(const TimelineBand& band);

 private:
  TimelineBandView* band_;
  QVBoxLayout* list_;
  std::vector<TimelineRow*> rows_;
};

}  // namespace kestrel
