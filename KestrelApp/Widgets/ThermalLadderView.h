#pragma once

#include <QWidget>
#include <vector>

#include "KestrelCore/Presentation/PowerModel.h"

namespace kestrel {

/// The levels of heat as steps that rise; those that are reached are filled, and the current one is named.
class ThermalLadderView final : public QWidget {
 public:
  explicit ThermalLadderView(QWidget* parent = nullptr);

  void setSteps(std::vector<ThermalStep> steps);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] Tone currentTone() const;

  std::vector<ThermalStep> steps_;
};

}  // namespace kestrel
