#include <QApplication>
#include <QBoxLayout>
#include <QHelpEvent>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QToolTip>
#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

#include "tests/app/ViewTestSupport.h"

#include "KestrelApp/PixelWorkerAnimationView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/CardGridLayout.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/Gauge.h"
#include "KestrelApp/Widgets/SectionScrollArea.h"
#include "KestrelApp/Widgets/TextLine.h"
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

TEST(TextLineTest, TextsStandAtTheEdgeOfTheLayoutAndRunInTheirOwnDirection) {
  constexpr int kWidth = 300;
  const auto columnsOf = [](Qt::LayoutDirection direction, bool isLeading, const QString& text) {
    QImage image(kWidth, 20, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    TextLine line(painter, image.rect(), direction);
    const QFont font = Theme::font(Theme::TextStyle::body);
    isLeading ? line.addLeading(text, font, Qt::black) : line.addTrailing(text, font, Qt::black);
    painter.end();
    return drawnColumns(image);
  };
  for (const QString& text : {QString("13 min ago"), QString("$1.11 est."), QString("שלום עולם")}) {
    for (const bool isLeading : {true, false}) {
      const auto [left, right] = columnsOf(Qt::LeftToRight, isLeading, text);
      const auto mirrored = columnsOf(Qt::RightToLeft, !isLeading, text);
      EXPECT_TRUE(isLeading ? left <= 4 : right >= kWidth - 5);
      EXPECT_EQ(mirrored, std::pair(left, right)) << "the same picture, whichever way the layout runs";
    }
  }
  const auto [left, right] = columnsOf(Qt::RightToLeft, true, QString(400, u'W'));
  EXPECT_TRUE(left >= 0 && right < kWidth);
}

TEST(CardGridLayoutTest, RowsAreAboutAsFullAndMirrored) {
  const struct {
    int cards, width, columns;
  } rows[] = {{4, 340, 2}, {4, 449, 2}, {4, 450, 4}, {5, 449, 3}, {3, 1000, 3}, {2, 50, 1}, {0, 300, 0}};
  for (const auto& [cards, width, columns] : rows) {
    QWidget parent;
    auto* grid = new CardGridLayout(105, 10);
    parent.setLayout(grid);
    for (int i = 0; i < cards; ++i) {
      grid->addWidget(new QWidget);
      grid->itemAt(i)->widget()->setFixedHeight(20);
    }
    parent.setLayoutDirection(Qt::RightToLeft);
    grid->setGeometry({0, 0, width, 400});
    int inFirst = 0;
    for (int i = 0; i < cards; ++i) inFirst += grid->itemAt(i)->geometry().top() == 0 ? 1 : 0;
    EXPECT_EQ(inFirst, columns) << cards << " in " << width;
    EXPECT_TRUE(cards == 0 || grid->itemAt(0)->geometry().right() == width - 1);
  }
}

TEST(SectionScrollAreaTest, TheContentIsNeverWiderThanCanBeReadOrSeen) {
  SectionScrollArea area(SectionScrollArea::kWidestOfRows);
  auto* row = new QWidget;
  row->setMinimumSize(100, 2000);
  area.lines().addWidget(row);
  area.show();
  for (const int width : {1400, 300, 760, 2000, 500}) {
    area.resize(width, 400);
    layOut();
    EXPECT_LE(row->width(), SectionScrollArea::kWidestOfRows);
    const int left = row->mapTo(area.viewport(), QPoint()).x();
    EXPECT_EQ(left + row->width() + left, area.viewport()->width()) << "in the middle at " << width;
    EXPECT_GE(left, Theme::kSpaceHuge);
  }
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
