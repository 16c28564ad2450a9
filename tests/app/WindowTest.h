#pragma once

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <gmock/gmock.h>

#include "screenshots/Sessions.h"
#include "screenshots/ViewStage.h"

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
  /// Also when the last refresh was a moment ago.
  void evaluate() {
    stage_.app().evaluate();
    stage_.executor().advance(1);
  }
  template <typename Widget>
  static std::vector<Widget*> visible(const QWidget& window) {
    std::vector<Widget*> found;
    for (auto* widget : window.findChildren<QWidget*>()) {
      auto* match = dynamic_cast<Widget*>(widget);
      if (match != nullptr && match->isVisible()) found.push_back(match);
    }
    return found;
  }

  ApplicationTheme theme_{*qApp};
  ViewStage views_{{.batteryPercent = 82, .isOnAC = true, .isCharging = true}};
  Stage& stage_ = views_.stage();
};

}  // namespace kestrel
