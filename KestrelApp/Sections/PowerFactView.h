#pragma once

#include <QWidget>

#include "KestrelApp/Widgets/Icon.h"

namespace kestrel {

class ElidedLabel;
class IconView;
struct PowerFact;

/// A state in words beside an icon: a line, and a smaller one that explains it.
class PowerFactView final : public QWidget {
 public:
  explicit PowerFactView(Icon icon, QWidget* parent = nullptr);

  void setFact(const PowerFact& fact);

 private:
  IconView* icon_;
  ElidedLabel* text_;
  ElidedLabel* detail_;
};

}  // namespace kestrel
