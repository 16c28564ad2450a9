#pragma once

#include <QWidget>
#include <vector>

namespace kestrel {

/// Small bars beside each other, as high as their values, which have no meaning but their proportion. A value
/// of 0 leaves a trace of the ground line.
class Sparkline final : public QWidget {
 public:
  explicit Sparkline(QWidget* parent = nullptr);

  /// None is below 0. The bar at `marked` stands out; a number beyond them marks none.
  void setValues(std::vector<double> values, std::size_t marked);

  [[nodiscard]] const std::vector<double>& values() const { return values_; }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<double> values_;
  std::size_t marked_ = 0;
};

}  // namespace kestrel
