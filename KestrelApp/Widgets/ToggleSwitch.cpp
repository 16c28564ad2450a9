#include "KestrelApp/Widgets/ToggleSwitch.h"

#include <QColor>
#include <QPainter>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

/// Room for the focus ring on each side.
constexpr int kMargin = Theme::kSpaceTiny;
constexpr int kKnobInset = 3;

}  // namespace

ToggleSwitch::ToggleSwitch(const QString& name, QWidget* parent) : QCheckBox(parent) {
  setAccessibleName(name);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setCursor(Qt::PointingHandCursor);
}

QSize ToggleSwitch::sizeHint() const {
  return {Theme::kSwitchWidth + 2 * kMargin, Theme::kSwitchHeight + 2 * kMargin};
}

void ToggleSwitch::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QRectF body(0, 0, Theme::kSwitchWidth, Theme::kSwitchHeight);
  body.moveCenter(QRectF(rect()).center());
  const double radius = body.height() / 2;
  if (hasFocus()) {
    theme.drawFocusRing(painter, body.adjusted(-kMargin, -kMargin, kMargin, kMargin), radius + kMargin);
  }
  const bool isOn = isChecked() && isEnabled();
  painter.setPen(isOn ? QPen(Qt::NoPen) : QPen(theme.color(Theme::Role::muted), Theme::kHairline));
  painter.setBrush(theme.color(isOn ? Theme::Role::accentArea : Theme::Role::track));
  painter.drawRoundedRect(body, radius, radius);
  const bool isAtRight = isChecked() == (layoutDirection() == Qt::LeftToRight);
  const double side = body.height() - 2 * kKnobInset;
  QRectF knob(body.left() + kKnobInset, body.top() + kKnobInset, side, side);
  if (isAtRight) knob.moveRight(body.right() - kKnobInset);
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme.color(isOn ? Theme::Role::onAccent : Theme::Role::muted));
  painter.drawEllipse(knob);
}

}  // namespace kestrel
