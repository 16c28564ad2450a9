#pragma once

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <gmock/gmock.h>
#include <set>

#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"
#include "tests/app/ViewTestSupport.h"

#include "KestrelApp/ApplicationTheme.h"

namespace kestrel {

/// A window over the core on a simulated machine.
class WindowTest : public testing::Test {
 protected:
  static void show(QWidget& window) {
    window.resize(window.sizeHint());
    window.show();
    QApplication::setActiveWindow(&window);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  }
  /// Also when the last refresh was a moment ago; new widgets are shown then.
  void evaluate() {
    stage_.app().evaluate();
    stage_.executor().advance(1);
    layOut();
  }
  /// Goes round with the Tab key. Each stop is seen, and can be named by who does not see it; no button is
  /// left out but those that `isReachedOtherwise` names.
  template <typename Test>
  static void expectKeyboardReachesAll(const QWidget& window, Test isReachedOtherwise) {
    std::set<QWidget*> stops;
    while (stops.insert(QApplication::focusWidget()).second) {
      const auto* stop = QApplication::focusWidget();
      ASSERT_NE(stop, nullptr);
      const auto* button = dynamic_cast<const QAbstractButton*>(stop);
      EXPECT_FALSE(stop->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()))
          << stop->metaObject()->className();
      EXPECT_FALSE(stop->visibleRegion().isEmpty()) << stop->accessibleName().toStdString();
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (auto* button : visible<QAbstractButton>(window)) {
      if (!button->isEnabled() || isReachedOtherwise(*button)) continue;
      EXPECT_TRUE(stops.contains(button)) << button->text().toStdString();
    }
  }
  template <typename Widget>
  static std::vector<Widget*> visible(const QWidget& window) {
    auto found = childrenOf<Widget>(window);
    std::erase_if(found, [](const Widget* each) { return !each->isVisible(); });
    return found;
  }

  ApplicationTheme theme_{*qApp};
  ViewStage views_{{.batteryPercent = 82, .isOnAC = true, .isCharging = true}};
  Stage& stage_ = views_.stage();
};

}  // namespace kestrel
