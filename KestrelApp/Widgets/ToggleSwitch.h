#pragma once

#include <QCheckBox>

namespace kestrel {

/// A check box that looks like a switch, without a text of its own.
class ToggleSwitch final : public QCheckBox {
 public:
  /// The name is read aloud.
  explicit ToggleSwitch(const QString& name, QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace kestrel
