#pragma once

#include <QString>
#include <QWidget>

#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

/// A word in a pill.
class Badge final : public QWidget {
 public:
  explicit Badge(QWidget* parent = nullptr);

  void setText(const QString& text, Tone tone);
  [[nodiscard]] const QString& text() const { return text_; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString text_;
  Tone tone_ = Tone::muted;
};

}  // namespace kestrel
