#include "KestrelApp/Widgets/Sparkline.h"

#include <QColor>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr int kHours = 24;
/// Of a bar and the gap after it, in logical pixels.
constexpr int kStep = Theme::kSpaceTiny;
constexpr int kGap = Theme::kHairline;

}  // namespace

Sparkline::Sparkline(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Sparkline::setValues(std::vector<double> values, std::size_t marked) {
  if (values == values_ && marked == marked_) return;
  values_ = std::move(values);
  marked_ = marked;
  update();
}

QSize Sparkline::sizeHint() const {
  return {kHours * kStep - kGap, Theme::kSpaceHuge};
}

void Sparkline::paintEvent(QPaintEvent*) {
  if (values_.empty()) return;
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  const double highest = *std::ranges::max_element(values_);
  const double step = (width() + kGap) / static_cast<double>(values_.size());
  for (std::size_t i = 0; i < values_.size(); ++i) {
    const bool isEmpty = !(values_[i] > 0);
    // What is not nothing shows.
    const double barHeight = isEmpty ? 1 : std::max(std::round(values_[i] / highest * height()), 2.0);
    const auto role = i == marked_ ? Theme::Role::text
                      : isEmpty    ? Theme::Role::hairline
                                   : Theme::Role::accentArea;
    const double x = layoutDirection() == Qt::RightToLeft
                         ? width() - (static_cast<double>(i) + 1) * step + kGap
                         : static_cast<double>(i) * step;
    painter.fillRect(QRectF(x, height() - barHeight, step - kGap, barHeight), theme.color(role));
  }
}

}  // namespace kestrel
