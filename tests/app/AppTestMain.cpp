#include <QApplication>
#include <csignal>
#include <gmock/gmock.h>

/// One application object for all tests, on a screen that nobody sees.
int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleMock(&argc, argv);
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
