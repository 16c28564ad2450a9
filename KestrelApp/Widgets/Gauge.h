#pragma once

#include <QString>
#include <QWidget>
#include <optional>

#include "KestrelCore/Presentation/Tone.h"

namespace kestrel {

/// A bar that shows how much is left. What is not known has no bar: its reason stands there.
class Gauge final : public QWidget {
 public:
  explicit Gauge(QWidget* parent = nullptr);

  /// A fraction of 0 to 1.
  void setValue(double fraction, Tone tone);
  void setUnknown(const QString& reason);

  [[nodiscard]] std::optional<double> value() const { return value_; }
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<double> value_;
  Tone tone_ = Tone::accent;
  QString reason_;
};

}  // namespace kestrel
