#include "KestrelApp/Theme.h"

#include <QColor>
#include <QFont>
#include <QFontDatabase>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QWidget>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace kestrel {
namespace {

struct Shades {
  QRgb dark;
  QRgb light;
};

constexpr QRgb rgb(unsigned value) {
  return 0xFF000000U | value;
}

/// In the order of the roles.
constexpr std::array<Shades, 13> kColors{{
    {rgb(0x0F1117), rgb(0xF6F8FB)},
    {rgb(0x171A23), rgb(0xFFFFFF)},
    {rgb(0x1F2430), rgb(0xEEF2F7)},
    {rgb(0x2A303D), rgb(0xE2E7EF)},
    {rgb(0x2A303D), rgb(0xE2E7EF)},
    {rgb(0xE6EAF2), rgb(0x10131A)},
    {rgb(0x98A2B5), rgb(0x566072)},
    {rgb(0x00F2FE), rgb(0x007C94)},
    {rgb(0x00B4D8), rgb(0x007C94)},
    {rgb(0x0F1117), rgb(0xFFFFFF)},
    {rgb(0x00FFA3), rgb(0x0B7A52)},
    {rgb(0xFBBF24), rgb(0x8F5B00)},
    {rgb(0xEF4444), rgb(0xC42424)},
}};

/// In the order of the agents. One hue each; the lightness was searched so that the least distance of any
/// two, seen with normal, red-blind, green-blind and blue-blind eyes, is as large as nine colours allow, at a
/// contrast of 3:1 to the surfaces.
constexpr std::array<Shades, 9> kSeries{{
    {rgb(0x149CA8), rgb(0x169DA9)},
    {rgb(0x986ED9), rgb(0x996FDA)},
    {rgb(0x63A7FE), rgb(0x065CB2)},
    {rgb(0xFE994E), rgb(0x924A03)},
    {rgb(0xFDA9D0), rgb(0xB3427F)},
    {rgb(0x7BEE98), rgb(0x02481D)},
    {rgb(0x917A11), rgb(0x8C7506)},
    {rgb(0xEF6E68), rgb(0xE3645E)},
    {rgb(0x6D727B), rgb(0x464B53)},
}};

constexpr int kDarkBelowLightness = 128;

Theme::Role roleOf(Tone tone) {
  switch (tone) {
    case Tone::normal:
      return Theme::Role::text;
    case Tone::muted:
      return Theme::Role::muted;
    case Tone::accent:
      return Theme::Role::accent;
    case Tone::good:
      return Theme::Role::good;
    case Tone::warn:
      return Theme::Role::warn;
    case Tone::bad:
      return Theme::Role::bad;
  }
  return Theme::Role::text;
}

Theme::Role roleOf(AgentState state) {
  switch (state) {
    case AgentState::working:
      return Theme::Role::accent;
    case AgentState::waiting:
      return Theme::Role::warn;
    case AgentState::completed:
      return Theme::Role::good;
    case AgentState::error:
      return Theme::Role::bad;
    case AgentState::unknown:
    case AgentState::idle:
    case AgentState::stale:
      break;
  }
  return Theme::Role::muted;
}

int pixelSize(Theme::TextStyle style) {
  switch (style) {
    case Theme::TextStyle::caption:
      return 11;
    case Theme::TextStyle::body:
      return 13;
    case Theme::TextStyle::title:
      return 15;
    case Theme::TextStyle::figure:
      return 22;
  }
  return 13;
}

QPen rounded(const QColor& color, double width) {
  return {color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

/// Paints with smooth edges, and leaves the painter as it was.
class SmoothPainting {
 public:
  explicit SmoothPainting(QPainter& painter) : painter_(painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
  }
  ~SmoothPainting() { painter_.restore(); }
  SmoothPainting(const SmoothPainting&) = delete;
  SmoothPainting& operator=(const SmoothPainting&) = delete;

 private:
  QPainter& painter_;
};

/// The part that a fraction fills; NaN fills nothing.
double filled(double fraction) {
  return fraction > 0 ? std::min(fraction, 1.0) : 0.0;
}

}  // namespace

const Theme& Theme::of(Scheme scheme) {
  static const Theme light(Scheme::light);
  static const Theme dark(Scheme::dark);
  return scheme == Scheme::dark ? dark : light;
}

const Theme& Theme::of(const QPalette& palette) {
  // Style sheets change the other colours of the widgets that they match.
  const QColor link = palette.color(QPalette::Active, QPalette::Link);
  for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
    if (link == of(scheme).color(Role::accent)) return of(scheme);
  }
  return of(schemeOf(palette));
}

const Theme& Theme::of(const QWidget& widget) {
  return of(widget.palette());
}

Theme::Scheme Theme::schemeOf(const QPalette& palette) {
  const bool isDark = palette.color(QPalette::Active, QPalette::Window).lightness() < kDarkBelowLightness;
  return isDark ? Scheme::dark : Scheme::light;
}

QColor Theme::color(Role role) const {
  const Shades& shades = kColors[static_cast<std::size_t>(role)];
  return QColor::fromRgb(scheme_ == Scheme::dark ? shades.dark : shades.light);
}

QColor Theme::color(Tone tone) const {
  return color(roleOf(tone));
}

QColor Theme::color(AgentState state) const {
  return color(roleOf(state));
}

QColor Theme::series(AgentType agent) const {
  const Shades& shades = kSeries[static_cast<std::size_t>(agent)];
  return QColor::fromRgb(scheme_ == Scheme::dark ? shades.dark : shades.light);
}

QPalette Theme::palette() const {
  QPalette palette(color(Role::text), color(Role::raised), color(Role::hairline), color(Role::hairline),
                   color(Role::hairline), color(Role::text), color(Role::text), color(Role::surface),
                   color(Role::window));
  palette.setColor(QPalette::AlternateBase, color(Role::window));
  palette.setColor(QPalette::ToolTipBase, color(Role::raised));
  palette.setColor(QPalette::ToolTipText, color(Role::text));
  palette.setColor(QPalette::PlaceholderText, color(Role::muted));
  palette.setColor(QPalette::Highlight, color(Role::accentArea));
  palette.setColor(QPalette::HighlightedText, color(Role::onAccent));
  palette.setColor(QPalette::Link, color(Role::accent));
  palette.setColor(QPalette::LinkVisited, color(Role::accent));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, color(Role::muted));
  }
  return palette;
}

QFont Theme::font(TextStyle style, bool isStrong) {
  QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
  font.setPixelSize(pixelSize(style));
  font.setWeight(isStrong ? QFont::DemiBold : QFont::Normal);
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
  font.setFeature("tnum", 1);
#endif
  return font;
}

void Theme::drawCard(QPainter& painter, const QRectF& area) const {
  const SmoothPainting smooth(painter);
  painter.setPen(QPen(color(Role::hairline), kHairline));
  painter.setBrush(color(Role::surface));
  const double inset = kHairline / 2.0;
  painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), kCardRadius, kCardRadius);
}

void Theme::drawBar(QPainter& painter, const QRectF& area, double fraction, const QColor& fill,
                    Qt::LayoutDirection direction) const {
  const SmoothPainting smooth(painter);
  const double radius = area.height() / 2;
  painter.setPen(Qt::NoPen);
  painter.setBrush(color(Role::track));
  painter.drawRoundedRect(area, radius, radius);
  const double part = filled(fraction);
  if (part == 0) return;
  QRectF full = area;
  full.setWidth(std::max(area.width() * part, area.height()));
  if (direction == Qt::RightToLeft) full.moveRight(area.right());
  painter.setBrush(fill);
  painter.drawRoundedRect(full, radius, radius);
}

void Theme::drawRing(QPainter& painter, const QRectF& area, double fraction, const QColor& fill) const {
  const SmoothPainting smooth(painter);
  // Qt counts angles in sixteenths of a degree.
  constexpr int kDegree = 16;
  const double inset = kRingThickness / 2.0;
  const QRectF circle = area.adjusted(inset, inset, -inset, -inset);
  painter.setPen(QPen(color(Role::track), kRingThickness));
  painter.drawEllipse(circle);
  const double part = filled(fraction);
  if (part == 0) return;
  painter.setPen(rounded(fill, kRingThickness));
  painter.drawArc(circle, 90 * kDegree, static_cast<int>(std::lround(-part * 360 * kDegree)));
}

void Theme::drawDot(QPainter& painter, const QRectF& area, AgentState state) const {
  const SmoothPainting smooth(painter);
  const double size = std::min(area.width(), area.height());
  painter.translate(area.center());
  painter.scale(size / 10, size / 10);
  const QColor hue = color(state);
  painter.setPen(rounded(hue, 1.5));
  switch (state) {
    case AgentState::working:
      painter.setBrush(hue);
      painter.drawEllipse(QRectF(-4, -4, 8, 8));
      return;
    case AgentState::waiting:
      painter.setBrush(hue);
      painter.drawPolygon(QPolygonF({{0, -4}, {4, 0}, {0, 4}, {-4, 0}}));
      return;
    case AgentState::completed:
      painter.setPen(rounded(hue, 2));
      painter.drawPolyline(QPolygonF({{-4, 0.5}, {-1.2, 3.2}, {4, -3}}));
      return;
    case AgentState::error:
      painter.setPen(rounded(hue, 2));
      painter.drawLine(QPointF(-3.2, -3.2), QPointF(3.2, 3.2));
      painter.drawLine(QPointF(-3.2, 3.2), QPointF(3.2, -3.2));
      return;
    case AgentState::stale:
      painter.setPen(rounded(hue, 2));
      painter.drawLine(QPointF(-3.5, 0), QPointF(3.5, 0));
      return;
    case AgentState::unknown:
      painter.setPen(QPen(hue, 1.5, Qt::DotLine));
      [[fallthrough]];
    case AgentState::idle:
      painter.drawEllipse(QRectF(-3.5, -3.5, 7, 7));
      return;
  }
}

void Theme::drawBadge(QPainter& painter, const QRectF& area, const QString& text, Tone tone) const {
  const SmoothPainting smooth(painter);
  const QColor hue = color(tone);
  const double inset = kHairline / 2.0;
  const QRectF pill = area.adjusted(inset, inset, -inset, -inset);
  painter.setPen(QPen(hue, kHairline));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
  painter.setFont(font(TextStyle::caption, true));
  painter.drawText(area, Qt::AlignCenter, text);
}

void Theme::drawFocusRing(QPainter& painter, const QRectF& area, double radius) const {
  const SmoothPainting smooth(painter);
  constexpr double kWidth = 2;
  painter.setPen(QPen(color(Role::accent), kWidth));
  painter.setBrush(Qt::NoBrush);
  const double inset = kWidth / 2;
  painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), radius, radius);
}

}  // namespace kestrel
