#pragma once

#include <memory>
#include <string>

class QLabel;
class QMainWindow;
class QWidget;

namespace kestrel {

/// One of the ordinary windows. Closing hides it; it lives on with what it holds. Main thread.
class AppWindow {
 public:
  AppWindow(const std::string& title, std::unique_ptr<QWidget> content);
  ~AppWindow();
  AppWindow(const AppWindow&) = delete;
  AppWindow& operator=(const AppWindow&) = delete;

  /// Shows it in front of all others.
  void bringToFront();
  /// A line above the content; none when empty.
  void setNotice(const std::string& text);
  [[nodiscard]] QMainWindow& window() { return *window_; }

 private:
  const std::unique_ptr<QMainWindow> window_;
  QLabel* const notice_;
};

}  // namespace kestrel
