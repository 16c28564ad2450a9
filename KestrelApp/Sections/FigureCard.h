#pragma once

#include <QWidget>

namespace kestrel {

class ElidedLabel;
struct OverviewFigure;

/// One large figure and what it is.
class FigureCard final : public QWidget {
 public:
  explicit FigureCard(QWidget* parent = nullptr);

  void setFigure(const OverviewFigure& figure);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  ElidedLabel* value_;
  ElidedLabel* caption_;
};

}  // namespace kestrel
