#pragma once

#include <QWidget>

namespace kestrel {

class ElidedLabel;
class PixelWorkerAnimationView;
struct OverviewModel;

/// The mascot, and in words whether the machine is kept awake, why and since when.
class OverviewHeader final : public QWidget {
 public:
  explicit OverviewHeader(QWidget* parent = nullptr);

  void setModel(const OverviewModel& model);

 private:
  PixelWorkerAnimationView* blob_;
  ElidedLabel* headline_;
  ElidedLabel* reason_;
  ElidedLabel* detail_;
};

}  // namespace kestrel
