#pragma once

#include <QProxyStyle>

namespace kestrel {

/// Fusion, with check marks, radio marks and focus rings of Kestrel's own, whose state does not hang on
/// colour alone.
class KestrelStyle final : public QProxyStyle {
 public:
  KestrelStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                       const QWidget* widget) const override;
  [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                const QWidget* widget) const override;

 private:
  void drawComboBox(const QStyleOptionComplex& option, QPainter& painter, const QWidget* widget) const;
  void drawSlider(const QStyleOptionComplex& option, QPainter& painter, const QWidget* widget) const;
};

}  // namespace kestrel
