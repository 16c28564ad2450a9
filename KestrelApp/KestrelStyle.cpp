#include "KestrelApp/KestrelStyle.h"

#include <QColor>
#include <QPainter>
#include <QSlider>
#include <QStyleOption>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/Icon.h"

namespace kestrel {
namespace {

/// The radius of a small square's corners.
constexpr int kSmallRadius = Theme::kSpaceTiny;

void drawIndicator(const Theme& theme, const QStyleOption& option, QPainter& painter, bool isRound) {
  const bool isOn = option.state.testFlag(QStyle::State_On);
  const bool isPartly = option.state.testFlag(QStyle::State_NoChange);
  const bool isEnabled = option.state.testFlag(QStyle::State_Enabled);
  const bool isFilled = (isOn || isPartly) && isEnabled;
  const QRectF area = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
  const double radius = isRound ? area.height() / 2 : kSmallRadius;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(isFilled ? QPen(Qt::NoPen) : QPen(theme.color(Theme::Role::muted), Theme::kHairline));
  painter.setBrush(theme.color(isFilled ? Theme::Role::accentArea : Theme::Role::surface));
  painter.drawRoundedRect(area, radius, radius);
  const QColor mark = theme.color(isEnabled ? Theme::Role::onAccent : Theme::Role::muted);
  const double inset = area.width() / 3;
  painter.setPen(Qt::NoPen);
  painter.setBrush(mark);
  if (isPartly) {
    painter.drawRect(QRectF(area.left() + inset / 2, area.center().y() - 1, area.width() - inset, 2));
  } else if (isOn && isRound) {
    painter.drawEllipse(area.adjusted(inset, inset, -inset, -inset));
  } else if (isOn) {
    drawIcon(painter, area.adjusted(2, 2, -2, -2), Icon::check, mark);
  }
  painter.restore();
}

/// What a control with a value lies on.
void drawField(const Theme& theme, const QStyleOption& option, QPainter& painter) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF area = QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5);
  const bool isHovered = option.state.testFlag(QStyle::State_MouseOver);
  painter.setPen(QPen(theme.color(isHovered ? Theme::Role::muted : Theme::Role::hairline), Theme::kHairline));
  painter.setBrush(theme.color(Theme::Role::raised));
  painter.drawRoundedRect(area, Theme::kRadius, Theme::kRadius);
  painter.restore();
  if (option.state.testFlag(QStyle::State_HasFocus))
    theme.drawFocusRing(painter, option.rect, Theme::kRadius);
}

}  // namespace

KestrelStyle::KestrelStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void KestrelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
  const Theme& theme = Theme::of(option->palette);
  switch (element) {
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
      return drawIndicator(theme, *option, *painter, false);
    case PE_IndicatorRadioButton:
      return drawIndicator(theme, *option, *painter, true);
    case PE_FrameFocusRect:
      return theme.drawFocusRing(*painter, option->rect, kSmallRadius);
    default:
      return QProxyStyle::drawPrimitive(element, option, painter, widget);
  }
}

void KestrelStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
  switch (control) {
    case CC_ComboBox:
      return drawComboBox(*option, *painter, widget);
    case CC_Slider:
      return drawSlider(*option, *painter, widget);
    default:
      QProxyStyle::drawComplexControl(control, option, painter, widget);
  }
}

void KestrelStyle::drawComboBox(const QStyleOptionComplex& option, QPainter& painter,
                                const QWidget* widget) const {
  const Theme& theme = Theme::of(option.palette);
  drawField(theme, option, painter);
  QRectF mark(0, 0, Theme::kSmallIconSize, Theme::kSmallIconSize);
  mark.moveCenter(QRectF(subControlRect(CC_ComboBox, &option, SC_ComboBoxArrow, widget)).center());
  const bool isEnabled = option.state.testFlag(State_Enabled);
  drawIcon(painter, mark, Icon::chevronDown, theme.color(isEnabled ? Theme::Role::text : Theme::Role::muted));
}

void KestrelStyle::drawSlider(const QStyleOptionComplex& option, QPainter& painter,
                              const QWidget* widget) const {
  const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(&option);
  if (slider == nullptr || slider->orientation != Qt::Horizontal || slider->tickPosition != QSlider::NoTicks)
    return QProxyStyle::drawComplexControl(CC_Slider, &option, &painter, widget);
  const Theme& theme = Theme::of(option.palette);
  const QRectF handle = subControlRect(CC_Slider, &option, SC_SliderHandle, widget);
  QRectF groove(option.rect.left(), 0, option.rect.width(), Theme::kSpaceTiny);
  groove.moveCenter(QPointF(groove.center().x(), handle.center().y()));
  const bool isMirrored = slider->upsideDown != (slider->direction == Qt::RightToLeft);
  const double before =
      isMirrored ? groove.right() - handle.center().x() : handle.center().x() - groove.left();
  const bool isEnabled = option.state.testFlag(State_Enabled);
  theme.drawBar(painter, groove, before / groove.width(),
                theme.color(isEnabled ? Theme::Role::accentArea : Theme::Role::muted),
                isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  QRectF knob(0, 0, Theme::kIconSize, Theme::kIconSize);
  knob.moveCenter(handle.center());
  painter.setPen(QPen(theme.color(Theme::Role::muted), Theme::kHairline));
  painter.setBrush(theme.color(Theme::Role::surface));
  painter.drawEllipse(knob.adjusted(1, 1, -1, -1));
  painter.restore();
  if (option.state.testFlag(State_HasFocus)) theme.drawFocusRing(painter, knob, knob.height() / 2);
}

QSize KestrelStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                     const QWidget* widget) const {
  QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
  if (type == CT_ComboBox) size = size.expandedTo({0, Theme::kButtonHeight});
  return size;
}

int KestrelStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
      return Theme::kIconSize;
    default:
      return QProxyStyle::pixelMetric(metric, option, widget);
  }
}

}  // namespace kestrel
