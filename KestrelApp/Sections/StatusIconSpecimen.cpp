#include "KestrelApp/Sections/StatusIconSpecimen.h"

#include <QFontMetrics>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>

#include "KestrelApp/KestrelBlobGlyphRenderer.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelCore/Presentation/AppearanceModel.h"

namespace kestrel {
namespace {

/// Around the icon.
constexpr int kPanelMargin = Theme::kSpaceSmall;
constexpr int kLeastWidth = 9 * Theme::kSpaceLarge;
constexpr auto kShownState = KestrelVisualState::working;

QPixmap pictureOf(const AppearanceIcon& icon, KestrelBlobGlyphRenderer& renderer) {
  const QSize pixels = renderer.pictureSize(kShownState, icon.count, icon.pixels);
  return renderer.createStatusIcon(kShownState, 0, icon.count, !icon.isEnabled).pixmap(pixels, 1.0);
}

QPixmap tinted(const QPixmap& shape, const QColor& color) {
  QPixmap result = shape;
  QPainter painter(&result);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(result.rect(), color);
  return result;
}

}  // namespace

StatusIconSpecimen::StatusIconSpecimen(const AppearanceIcon& icon, KestrelBlobGlyphRenderer& renderer,
                                       bool isTinted, QWidget* parent)
    : QWidget(parent),
      picture_(pictureOf(icon, renderer)),
      caption_(displayText(icon.caption)),
      isTinted_(isTinted) {
  setFont(Theme::font(Theme::TextStyle::caption));
  setAccessibleName(caption_);
}

int StatusIconSpecimen::panelHeight() const {
  return picture_.height() + 2 * kPanelMargin;
}

QSize StatusIconSpecimen::sizeHint() const {
  return {kLeastWidth, panelHeight() + Theme::kSpaceTiny + QFontMetrics(font()).height()};
}

void StatusIconSpecimen::drawPanel(QPainter& painter, const QRectF& panel, bool isDark) const {
  const Theme& theme = Theme::of(isDark ? Theme::Scheme::dark : Theme::Scheme::light);
  painter.fillRect(panel, theme.color(Theme::Role::raised));
  const QPixmap picture = isTinted_ ? tinted(picture_, theme.color(Theme::Role::text)) : picture_;
  QRect area(QPoint(), picture.size());
  area.moveCenter(panel.center().toPoint());
  painter.drawPixmap(area, picture);
}

void StatusIconSpecimen::paintEvent(QPaintEvent*) {
  const Theme& theme = Theme::of(*this);
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  const QRectF all(0, 0, width(), panelHeight());
  QPainterPath shape;
  shape.addRoundedRect(all, Theme::kRadius, Theme::kRadius);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setClipPath(shape);
  const int middle = width() / 2;
  drawPanel(painter, QRectF(0, 0, middle, all.height()), false);
  drawPanel(painter, QRectF(middle, 0, width() - middle, all.height()), true);
  painter.setPen(QPen(theme.color(Theme::Role::hairline), 2 * Theme::kHairline));
  painter.drawPath(shape);
  painter.restore();
  painter.setPen(theme.color(Theme::Role::muted));
  const QRectF caption(0, all.bottom() + Theme::kSpaceTiny, width(), QFontMetrics(font()).height());
  painter.drawText(caption, Qt::AlignCenter | Qt::TextSingleLine, caption_);
}

}  // namespace kestrel
