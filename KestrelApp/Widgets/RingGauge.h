#pragma once

#include <QString>
#include <QWidget>
#include <optional>

#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

/// A ring that shows how much is left, with the figure inside. What is not known is a ring without a filling,
/// around a dash; say the reason beside it.
class RingGauge final : public QWidget {
 public:
  explicit RingGauge(QWidget* parent = nullptr);

  /// A fraction of 0 to 1, and the figure: "78 %".
  void setValue(double fraction, const QString& figure, Tone tone);
  void setUnknown(const QString& reason);

  [[nodiscard]] std::optional<double> value() const { return value_; }
  [[nodiscard]] QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<double> value_;
  QString figure_;
  Tone tone_ = Tone::accent;
};

}  // namespace kestrel
