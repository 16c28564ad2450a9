#pragma once

#include <QWidget>

#include "KestrelCore/Presentation/PopoverModel.h"

namespace kestrel {

class ElidedLabel;
class Sparkline;

/// What today used, and in which hours.
class TodayStrip final : public QWidget {
 public:
  explicit TodayStrip(QWidget* parent = nullptr);

  void setModel(const TodayModel& today);

 private:
  ElidedLabel* line_;
  Sparkline* hours_;
};

}  // namespace kestrel
