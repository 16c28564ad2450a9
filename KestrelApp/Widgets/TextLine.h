#pragma once

#include <QRect>
#include <Qt>

class QColor;
class QFont;
class QPainter;
class QString;

namespace kestrel {

/// Lays texts out along a line from both of its ends, in either direction of the layout; each runs in a
/// direction of its own. What has no room is cut.
class TextLine {
 public:
  TextLine(QPainter& painter, const QRect& area, Qt::LayoutDirection direction)
      : painter_(painter), area_(area), rest_(area), direction_(direction) {}

  /// At most `part` of what is left of the line.
  void addLeading(const QString& text, const QFont& font, const QColor& color, double part = 1) {
    add(text, font, color, part, true);
  }
  void addTrailing(const QString& text, const QFont& font, const QColor& color, double part = 1) {
    add(text, font, color, part, false);
  }

 private:
  void add(const QString& text, const QFont& font, const QColor& color, double part, bool isLeading);

  QPainter& painter_;
  const QRect area_;
  QRect rest_;
  const Qt::LayoutDirection direction_;
};

}  // namespace kestrel
