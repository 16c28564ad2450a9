#include "KestrelApp/Widgets/SidebarButton.h"

#include <QFocusEvent>
#include <QPainter>
#include <QStyle>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {
namespace {

constexpr int kHeight = Theme::kButtonHeight + Theme::kSpaceTiny;
constexpr int kBarWidth = 3;

}  // namespace

SidebarButton::SidebarButton(Icon icon, const QString& word, const QString& hint, QWidget* parent)
    : QAbstractButton(parent), icon_(icon) {
  setText(word);
  setAccessibleName(word);
  setToolTip(toolTipText(word + QStringLiteral("  ") + hint));
  setCheckable(true);
  setAutoExclusive(true);
  setFocusPolicy(Qt::StrongFocus);
  setFont(Theme::font(Theme::TextStyle::body));
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SidebarButton::setCompact(bool isCompact) {
  if (isCompact_ == isCompact) return;
  isCompact_ = isCompact;
  updateGeometry();
  update();
}

QSize SidebarButton::sizeHint() const {
  const int icon = Theme::kIconSize + 2 * Theme::kSpaceMedium;
  if (isCompact_) return {icon, kHeight};
  return {icon + QFontMetrics(font()).horizontalAdvance(text()) + Theme::kSpaceLarge, kHeight};
}

void SidebarButton::focusInEvent(QFocusEvent* event) {
  if (event->reason() != Qt::ActiveWindowFocusReason) isRinged_ = event->reason() != Qt::MouseFocusReason;
  QAbstractButton::focusInEvent(event);
}

void SidebarButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  update();
}

void SidebarButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  update();
}

void SidebarButton::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const auto visual = [this](const QRect& logical) {
    return QRectF(QStyle::visualRect(layoutDirection(), rect(), logical));
  };
  if (isChecked() || underMouse()) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(Theme::Role::raised));
    painter.drawRoundedRect(rect(), Theme::kRadius, Theme::kRadius);
  }
  if (isChecked()) {
    painter.setBrush(theme.color(Theme::Role::accent));
    const QRect bar(0, Theme::kSpaceSmall, kBarWidth, height() - 2 * Theme::kSpaceSmall);
    painter.drawRoundedRect(visual(bar), kBarWidth / 2.0, kBarWidth / 2.0);
  }
  const QColor ink = theme.color(isChecked() ? Theme::Role::text : Theme::Role::muted);
  const int left = isCompact_ ? (width() - Theme::kIconSize) / 2 : Theme::kSpaceMedium;
  const QRect icon(left, (height() - Theme::kIconSize) / 2, Theme::kIconSize, Theme::kIconSize);
  drawIcon(painter, visual(icon), icon_,
           isChecked() ? theme.color(Theme::Role::accent) : theme.color(Theme::Role::muted));
  if (!isCompact_) {
    const int textLeft = icon.right() + 1 + Theme::kSpaceMedium;
    painter.setPen(ink);
    painter.setFont(Theme::font(Theme::TextStyle::body, isChecked()));
    painter.drawText(visual(QRect(textLeft, 0, width() - textLeft, height())),
                     static_cast<int>(QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft)) |
                         Qt::AlignVCenter | Qt::TextSingleLine,
                     text());
  }
  if (hasFocus() && isRinged_) theme.drawFocusRing(painter, rect(), Theme::kRadius);
}

}  // namespace kestrel
