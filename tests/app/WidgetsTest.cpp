#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QPixmap>
#include <QToolTip>
#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/Gauge.h"
#include "KestrelApp/Widgets/ToolTipText.h"
#include "KestrelCore/Presentation/KestrelBlobAvatarProvider.h"

namespace kestrel {
namespace {

QImage pictureOf(QWidget& widget, double scale = 1) {
  QPixmap picture((QSizeF(widget.size()) * scale).toSize());
  picture.setDevicePixelRatio(scale);
  picture.fill(Qt::transparent);
  widget.render(&picture, {}, {}, QWidget::DrawChildren);
  return picture.toImage();
}

/// The columns from the first to the last that anything is drawn in.
std::pair<int, int> drawnColumns(const QImage& image) {
  std::pair<int, int> columns{image.width(), -1};
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, y).alpha() < 32) continue;
      columns = {std::min(columns.first, x), std::max(columns.second, x)};
    }
  }
  return columns;
}

TEST(ElidedLabelTest, NamesOfAnyLengthAndDirectionStayInside) {
  constexpr int kWidth = 120;
  for (const QString& name : {QString(300, u'W'), QString("وكيل ").repeated(60), QString("🦅").repeated(150),
                              QString("a\nb\tc ").repeated(50), QString(300'000, u'x')}) {
    for (const int lines : {1, 2}) {
      ElidedLabel label(Theme::TextStyle::body);
      label.setMaximumLines(lines);
      label.setText(name);
      label.resize(kWidth, std::max(label.heightForWidth(kWidth), label.sizeHint().height()));
      EXPECT_LE(label.minimumSizeHint().width(), kWidth / 2);
      EXPECT_LE(label.height(), lines * label.sizeHint().height());
      const auto [first, last] = drawnColumns(pictureOf(label));
      EXPECT_LE(first, 12) << "begins at the leading edge";
      EXPECT_GT(last, kWidth / 2);

      QHelpEvent help(QEvent::ToolTip, {}, {});
      QApplication::sendEvent(&label, &help);
      EXPECT_TRUE(QToolTip::text().contains(label.text().left(20).toHtmlEscaped()));
    }
  }
  EXPECT_EQ(toolTipText("<$0.01 & more\nnext"), "<qt>&lt;$0.01 &amp; more<br>next</qt>");
}

TEST(GaugeTest, WhatIsUnknownHasNoBar) {
  Gauge gauge;
  const auto hasColor = [&gauge](Theme::Role role) {
    gauge.resize(200, 20);
    const QImage image = pictureOf(gauge);
    const QColor wanted = Theme::of(gauge).color(role);
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixelColor(x, image.height() / 2) == wanted) return true;
    }
    return false;
  };
  gauge.setValue(0, Tone::bad);
  EXPECT_TRUE(hasColor(Theme::Role::track)) << "0 is a figure, and has its empty bar";
  EXPECT_FALSE(hasColor(Theme::Role::bad));
  gauge.setValue(0.001, Tone::bad);
  EXPECT_TRUE(hasColor(Theme::Role::bad)) << "and what is not 0 shows";
  gauge.setUnknown("Quota unavailable");
  EXPECT_FALSE(hasColor(Theme::Role::track));
  EXPECT_EQ(gauge.accessibleDescription(), "Quota unavailable");
}

TEST(PixelWorkerAnimationViewTest, PixelsAreWholeAtEveryScale) {
  const auto& blob = KestrelBlobAvatarProvider::shared();
  for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
    PixelWorkerAnimationView view(blob, 48);
    const QImage image = pictureOf(view, scale);
    const int side = static_cast<int>(48 * scale) / 16;
    const int left = (image.width() - 16 * side) / 2;
    const int top = image.height() - 16 * side;
    const auto frame = blob.frame(KestrelVisualState::idle, 0);
    for (int y = 0; y < 16 * side; ++y) {
      for (int x = 0; x < 16 * side; ++x) {
        const PixelRGBA pixel = frame.pixelAt(x / side, y / side);
        const QColor expected =
            pixel.a == 0 ? QColor(0, 0, 0, 0) : QColor(pixel.r, pixel.g, pixel.b, pixel.a);
        ASSERT_EQ(image.pixelColor(left + x, top + y), expected) << scale << ": " << x << ", " << y;
      }
    }
  }
}

TEST(PixelWorkerAnimationViewTest, MovesOnlyWhileItCanBeSeen) {
  PixelWorkerAnimationView view(KestrelBlobAvatarProvider::shared(), 48);
  view.setState(KestrelVisualState::working);
  EXPECT_FALSE(view.isMoving());
  view.show();
  EXPECT_TRUE(view.isMoving());
  view.setState(KestrelVisualState::idle);
  EXPECT_FALSE(view.isMoving()) << "one frame is no movement";
  view.setState(KestrelVisualState::waiting);
  EXPECT_TRUE(view.isMoving());
  view.hide();
  EXPECT_FALSE(view.isMoving());
}

}  // namespace
}  // namespace kestrel
