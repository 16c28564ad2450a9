#pragma once

#include <QStringList>
#include <QWidget>
#include <optional>

#include "KestrelApp/Theme.h"

namespace kestrel {

/// Plain text that never asks for more room than there is: it is broken into a few lines, the last ends in
/// "…", and the whole is then the tool tip. Text of either direction begins at the widget's leading edge.
class ElidedLabel final : public QWidget {
 public:
  explicit ElidedLabel(Theme::TextStyle style, QWidget* parent = nullptr);

  /// Line breaks and other control characters count as blanks.
  void setText(const QString& text);
  [[nodiscard]] const QString& text() const { return text_; }
  void setTone(Tone tone);
  void setStrong(bool isStrong);
  /// 1 at first.
  void setMaximumLines(int lines);
  /// At the trailing edge instead.
  void setTrailing(bool isTrailing);
  /// Plain text that says more than the label; empty: the label's own text, where it was cut.
  void setDetails(const QString& details);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;
  [[nodiscard]] bool hasHeightForWidth() const override { return maximumLines_ > 1; }
  [[nodiscard]] int heightForWidth(int width) const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  /// What is shown of the text at a width.
  [[nodiscard]] const QStringList& linesFor(int width) const;
  /// After a change of what they depend on.
  void forgetLines();
  [[nodiscard]] bool isCut() const;

  QString text_;
  QString details_;
  Tone tone_ = Tone::normal;
  int maximumLines_ = 1;
  bool isTrailing_ = false;
  mutable std::optional<int> naturalWidth_;
  /// The width that the lines are for; absent when they are not made.
  mutable std::optional<int> linesWidth_;
  mutable QStringList lines_;
};

}  // namespace kestrel
