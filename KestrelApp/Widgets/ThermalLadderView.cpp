#include "KestrelApp/Widgets/ThermalLadderView.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <utility>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"

namespace kestrel {
namespace {

constexpr int kLowestStep = Theme::kSpaceSmall;
constexpr int kRise = Theme::kSpaceSmall;
constexpr int kGap = Theme::kSpaceTiny;
constexpr int kMostSteps = 4;
constexpr int kLeastWidth = 4 * Theme::kSpaceLarge;
constexpr int kStairs = kLowestStep + (kMostSteps - 1) * kRise;

}  // namespace

ThermalLadderView::ThermalLadderView(QWidget* parent) : QWidget(parent) {
  setFont(Theme::font(Theme::TextStyle::caption));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ThermalLadderView::setSteps(std::vector<ThermalStep> steps) {
  if (steps_ == steps) return;
  steps_ = std::move(steps);
  for (const auto& step : steps_) {
    if (step.isCurrent) setAccessibleDescription(displayText(step.name));
  }
  update();
}

Tone ThermalLadderView::currentTone() const {
  for (const auto& step : steps_) {
    if (step.isCurrent) return step.tone;
  }
  return Tone::muted;
}

QSize ThermalLadderView::sizeHint() const {
  return {kMostSteps * kLeastWidth, kStairs + kGap + QFontMetrics(font()).height()};
}

void ThermalLadderView::paintEvent(QPaintEvent*) {
  if (steps_.empty()) return;
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tone tone = currentTone();
  const QColor reached = tone == Tone::normal ? theme.color(Theme::Role::accentArea) : theme.color(tone);
  const auto count = static_cast<int>(steps_.size());
  const int stepWidth = (width() - (count - 1) * kGap) / count;
  for (int i = 0; i < count; ++i) {
    const ThermalStep& step = steps_[static_cast<std::size_t>(i)];
    const int stepHeight = kLowestStep + i * kRise;
    const QRect stair(i * (stepWidth + kGap), kStairs - stepHeight, stepWidth, stepHeight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(step.isReached ? reached : theme.color(Theme::Role::track));
    painter.drawRoundedRect(QStyle::visualRect(layoutDirection(), rect(), stair), Theme::kSpaceTiny,
                            Theme::kSpaceTiny);
    const QRect label(stair.left(), kStairs + kGap, stepWidth, QFontMetrics(font()).height());
    painter.setFont(Theme::font(Theme::TextStyle::caption, step.isCurrent));
    painter.setPen(theme.color(step.isCurrent ? Theme::Role::text : Theme::Role::muted));
    painter.drawText(QStyle::visualRect(layoutDirection(), rect(), label), Qt::AlignCenter,
                     displayText(step.name));
  }
}

}  // namespace kestrel
