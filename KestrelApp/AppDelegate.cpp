#include "KestrelApp/AppDelegate.h"

#include "KestrelApp/ApplicationRuntime.h"
#include "KestrelApp/CommandLine.h"
#include "KestrelApp/StatusBarController.h"

namespace kestrel {

bool AppDelegate::applicationWillFinishLaunching(const std::vector<std::string>& arguments) {
  return printAnswerToOptions(arguments);
}

void AppDelegate::applicationDidFinishLaunching() {
  runtime_.start();
  statusBar_.setup();
  if (!runtime_.coordinator().settings().hasCompletedOnboarding()) showIntroduction_();
}

void AppDelegate::applicationWillTerminate() {
  runtime_.end();
}

}  // namespace kestrel
