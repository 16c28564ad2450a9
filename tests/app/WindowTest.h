#pragma once

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <gmock/gmock.h>

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
