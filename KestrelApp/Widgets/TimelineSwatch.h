#pragma once

#include <QWidget>

#include "KestrelCore/Presentation/Timeline.h"

namespace kestrel {

/// A small piece of the timeline, beside the word for it. A screen reader passes it over.
class TimelineSwatch final : public QWidget {
 public:
  explicit TimelineSwatch(TimelineKind kind, QWidget* parent = nullptr);

  void setKind(TimelineKind kind);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  TimelineKind kind_;
};

}  // namespace kestrel
