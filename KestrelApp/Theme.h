#pragma once

#include <Qt>

#include "KestrelCore/Agents/AgentState.h"
#include "KestrelCore/Agents/AgentType.h"
#include "KestrelCore/Presentation/Tone.h"

class QColor;
class QFont;
class QPainter;
class QPalette;
class QRectF;
class QString;
class QWidget;

namespace kestrel {

/// Every colour, size and font of the interface, and how its smallest parts are drawn. Main thread.
class Theme {
 public:
  enum class Scheme { light, dark };
  enum class Role {
    window,
    surface,
    /// What lies on a surface: buttons, menus, tool tips.
    raised,
    hairline,
    /// The empty part of a gauge.
    track,
    text,
    muted,
    /// Text, links, lines and the focus ring.
    accent,
    /// The same hue where it fills an area.
    accentArea,
    /// Text on such an area.
    onAccent,
    good,
    warn,
    bad
  };
  enum class TextStyle { caption, body, title, figure };

  // Logical pixels, on a grid of four.
  static constexpr int kSpaceTiny = 4;
  static constexpr int kSpaceSmall = 8;
  static constexpr int kSpaceMedium = 12;
  static constexpr int kSpaceLarge = 16;
  static constexpr int kSpaceHuge = 24;
  static constexpr int kRadius = 8;
  static constexpr int kCardRadius = 12;
  static constexpr int kHairline = 1;
  static constexpr int kIconSize = 16;
  static constexpr int kSmallIconSize = 12;
  static constexpr int kDotSize = 10;
  static constexpr int kGaugeHeight = 6;
  static constexpr int kRingThickness = 8;
  static constexpr int kBadgeHeight = 16;
  static constexpr int kButtonHeight = 28;
  static constexpr int kSwitchWidth = 36;
  static constexpr int kSwitchHeight = 20;
  static constexpr int kBlobSize = 48;
  static constexpr int kPopoverWidth = 350;
  static constexpr int kPopoverHeight = 420;

  static const Theme& of(Scheme scheme);
  /// The one whose palette it is, so that a repaint after a change of palette is enough.
  static const Theme& of(const QPalette& palette);
  static const Theme& of(const QWidget& widget);
  /// The scheme that a palette of the system stands for.
  static Scheme schemeOf(const QPalette& palette);

  [[nodiscard]] Scheme scheme() const { return scheme_; }
  [[nodiscard]] QColor color(Role role) const;
  [[nodiscard]] QColor color(Tone tone) const;
  [[nodiscard]] QColor color(AgentState state) const;
  /// The agent's hue in charts.
  [[nodiscard]] QColor series(AgentType agent) const;
  [[nodiscard]] QPalette palette() const;
  /// For the ordinary widgets. A push button with the property `primary` is filled, one with `quiet` has no
  /// frame.
  [[nodiscard]] QString styleSheet() const;
  /// The system's font; its digits have one width where the font can do so.
  static QFont font(TextStyle style, bool isStrong = false);

  void drawCard(QPainter& painter, const QRectF& area) const;
  /// A bar from the left, or from the right in `direction`, filled to a fraction of 0 to 1. What is not 0
  /// shows.
  void drawBar(QPainter& painter, const QRectF& area, double fraction, const QColor& fill,
               Qt::LayoutDirection direction) const;
  /// A ring, filled clockwise from the top.
  void drawRing(QPainter& painter, const QRectF& area, double fraction, const QColor& fill) const;
  /// Every state has a shape of its own beside its colour.
  void drawDot(QPainter& painter, const QRectF& area, AgentState state) const;
  void drawBadge(QPainter& painter, const QRectF& area, const QString& text, Tone tone) const;
  /// Around what has the keyboard, just inside the area.
  void drawFocusRing(QPainter& painter, const QRectF& area, double radius) const;

 private:
  explicit Theme(Scheme scheme) : scheme_(scheme) {}

  const Scheme scheme_;
};

}  // namespace kestrel
