#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kestrel {

class ApplicationRuntime;
class StatusBarController;

/// What happens at the turns of the application's life. Main thread.
class AppDelegate {
 public:
  /// Both outlive the delegate. `showIntroduction` opens the introduction's window.
  AppDelegate(ApplicationRuntime& runtime, StatusBarController& statusBar,
              std::function<void()> showIntroduction)
      : runtime_(runtime), statusBar_(statusBar), showIntroduction_(std::move(showIntroduction)) {}

  /// Before anything is made: prints what the options ask for. True when that was all there is to do.
  static bool applicationWillFinishLaunching(const std::vector<std::string>& arguments);
  /// Starts the coordinator, then shows the status icon, and the introduction until it was done or skipped.
  void applicationDidFinishLaunching();
  /// Releases every hold, then ends the event loop.
  void applicationWillTerminate();
  /// The status icon stays when the last window is closed.
  static bool applicationShouldTerminateAfterLastWindowClosed() { return false; }

 private:
  ApplicationRuntime& runtime_;
  StatusBarController& statusBar_;
  const std::function<void()> showIntroduction_;
};

}  // namespace kestrel
