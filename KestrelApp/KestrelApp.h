#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "KestrelCore/Platform/Directories.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

class ApplicationRuntime;
class SoleInstance;

/// The application with windows, from its start to its end. It has no window of its own at first: a status
/// icon alone, from which the others are opened.
class KestrelApp {
 public:
  KestrelApp(Directories directories, std::vector<std::string> arguments);

  /// Returns the exit status. A display that cannot be reached, or is lost later, makes the process go on as
  /// the small executable, without windows.
  int run();

 private:
  /// With an application object of the toolkit, as long as that lives.
  void runWindows(SoleInstance& instance, const Logger& logger);
  void goOnWithoutDisplay(const Logger& logger) const;

  const Directories directories_;
  std::vector<std::string> arguments_;
  /// While there is one; the display may be lost on any thread.
  std::atomic<ApplicationRuntime*> runtime_{nullptr};
};

}  // namespace kestrel
