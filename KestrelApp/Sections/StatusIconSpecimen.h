#pragma once

#include <QPixmap>
#include <QWidget>

namespace kestrel {

class KestrelBlobGlyphRenderer;
struct AppearanceIcon;

/// The status icon in one size, pixel for pixel, on a light and on a dark panel.
class StatusIconSpecimen final : public QWidget {
 public:
  /// `isTinted`: the system tints icons; only their shape counts.
  StatusIconSpecimen(const AppearanceIcon& icon, KestrelBlobGlyphRenderer& renderer, bool isTinted,
                     QWidget* parent = nullptr);

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] int panelHeight() const;
  void drawPanel(QPainter& painter, const QRectF& panel, bool isDark) const;

  QPixmap picture_;
  QString caption_;
  const bool isTinted_;
};

}  // namespace kestrel
