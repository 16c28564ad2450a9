#pragma once

#include <QWidget>
#include <functional>

#include "KestrelCore/Presentation/HeadlineModel.h"

namespace kestrel {

class ElidedLabel;
class PixelWorkerAnimationView;
class ToggleSwitch;

/// The mascot, what is held and why, and the master switch.
class PopoverHeader final : public QWidget {
 public:
  explicit PopoverHeader(QWidget* parent = nullptr);

  std::function<void(bool)> onMasterSwitched = [](bool) {};

  void setModel(const HeadlineModel& headline, bool isMasterOn);

 private:
  PixelWorkerAnimationView* blob_;
  ElidedLabel* headline_;
  ElidedLabel* reason_;
  ElidedLabel* detail_;
  ToggleSwitch* master_;
};

}  // namespace kestrel
