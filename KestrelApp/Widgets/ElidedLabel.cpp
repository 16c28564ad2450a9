#include "KestrelApp/Widgets/ElidedLabel.h"

#include <QColor>
#include <QEvent>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <QToolTip>
#include <algorithm>

#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {
namespace {

/// Nobody reads more, and laying out a megabyte takes its time.
constexpr int kMaximumCharacters = 1000;
/// No more are measured: coloured glyphs are decoded anew each time.
constexpr int kMeasuredCharacters = 200;
/// In logical pixels, of nearly any text.
constexpr int kNarrowestCharacter = 3;

/// The beginning, without half of a character at its end.
QString beginning(const QString& text, int characters) {
  QString cut = text.left(characters);
  if (!cut.isEmpty() && cut.back().isHighSurrogate()) cut.chop(1);
  return cut;
}

QString oneLine(const QString& text) {
  QString result = beginning(text, kMaximumCharacters);
  for (QChar& character : result) {
    if (character.category() == QChar::Other_Control) character = u' ';
  }
  return result.simplified();
}

}  // namespace

ElidedLabel::ElidedLabel(Theme::TextStyle style, QWidget* parent) : QWidget(parent) {
  setFont(Theme::font(style));
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setText(const QString& text) {
  const QString line = oneLine(text);
  if (line == text_) return;
  text_ = line;
  setAccessibleName(text_);
  forgetLines();
}

void ElidedLabel::setTone(Tone tone) {
  tone_ = tone;
  update();
}

void ElidedLabel::setStrong(bool isStrong) {
  QFont strong = font();
  strong.setWeight(isStrong ? QFont::DemiBold : QFont::Normal);
  setFont(strong);
  forgetLines();
}

void ElidedLabel::setMaximumLines(int lines) {
  maximumLines_ = lines;
  QSizePolicy policy(QSizePolicy::Preferred, lines > 1 ? QSizePolicy::Preferred : QSizePolicy::Fixed);
  policy.setHeightForWidth(lines > 1);
  setSizePolicy(policy);
  forgetLines();
}

void ElidedLabel::setTrailing(bool isTrailing) {
  isTrailing_ = isTrailing;
  update();
}

void ElidedLabel::setDetails(const QString& details) {
  details_ = details;
}

void ElidedLabel::forgetLines() {
  naturalWidth_.reset();
  linesWidth_.reset();
  updateGeometry();
  update();
}

QSize ElidedLabel::sizeHint() const {
  const QFontMetrics metrics(font());
  // One more, since advances are rounded.
  if (!naturalWidth_) naturalWidth_ = metrics.horizontalAdvance(beginning(text_, kMeasuredCharacters)) + 1;
  return {*naturalWidth_, metrics.height()};
}

QSize ElidedLabel::minimumSizeHint() const {
  const QFontMetrics metrics(font());
  return {std::min(metrics.horizontalAdvance(u'…') * 2, sizeHint().width()), metrics.height()};
}

int ElidedLabel::heightForWidth(int width) const {
  const auto lines = std::max<qsizetype>(linesFor(width).size(), 1);
  return static_cast<int>(lines) * QFontMetrics(font()).height();
}

const QStringList& ElidedLabel::linesFor(int width) const {
  if (linesWidth_ == width) return lines_;
  linesWidth_ = width;
  const QFontMetrics metrics(font());
  const int mayFit = (width / kNarrowestCharacter + 1) * maximumLines_;
  QString text = beginning(text_, mayFit);
  if (text.size() < text_.size()) text += u'…';
  lines_.clear();
  QTextLayout layout(text, font());
  QTextOption option;
  option.setWrapMode(maximumLines_ > 1 ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
  layout.setTextOption(option);
  layout.beginLayout();
  for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
    line.setLineWidth(width);
    const bool isLast = lines_.size() + 1 == maximumLines_;
    const QString rest = text.mid(line.textStart());
    lines_.append(isLast ? metrics.elidedText(rest, Qt::ElideRight, width) : rest.left(line.textLength()));
    if (isLast) break;
  }
  layout.endLayout();
  return lines_;
}

bool ElidedLabel::isCut() const {
  const QStringList& lines = linesFor(width());
  return !lines.isEmpty() && lines.last().endsWith(u'…') && !text_.endsWith(u'…');
}

bool ElidedLabel::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const QString tip = !details_.isEmpty() ? details_ : isCut() ? text_ : QString();
  // Without one of its own, whatever it lies in may have one.
  if (tip.isEmpty()) return QWidget::event(event);
  QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTipText(tip), this);
  return true;
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(Theme::of(*this).color(tone_));
  const auto logical = isTrailing_ ? Qt::AlignRight : Qt::AlignLeft;
  const auto alignment = QStyle::visualAlignment(layoutDirection(), logical);
  const int lineHeight = QFontMetrics(font()).height();
  QRect area(0, 0, width(), lineHeight);
  if (maximumLines_ == 1) area.moveTop((height() - lineHeight) / 2);
  for (const QString& line : linesFor(width())) {
    // The text decides its own direction, but not where it begins.
    painter.setLayoutDirection(line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(area,
                     static_cast<int>(alignment | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextSingleLine,
                     line.trimmed());
    area.translate(0, lineHeight);
  }
}

}  // namespace kestrel
