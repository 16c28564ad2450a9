#pragma once

#include <QWidget>

#include "KestrelCore/Presentation/PowerStripModel.h"

namespace kestrel {

class ElidedLabel;
class IconView;

/// Power, heat and Low Power Mode in one line.
class PowerStrip final : public QWidget {
 public:
  explicit PowerStrip(QWidget* parent = nullptr);

  void setModel(const PowerStripModel& model);

 private:
  struct Figure {
    IconView* icon = nullptr;
    ElidedLabel* label = nullptr;
  };
  Figure addFigure(const char* name);
  static void showFigure(const Figure& figure, const PowerFigure& value);

  Figure power_;
  Figure heat_;
  Figure lowPower_;
};

}  // namespace kestrel
