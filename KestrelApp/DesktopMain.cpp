#include <string>
#include <vector>

#include "KestrelApp/AppDelegate.h"
#include "KestrelApp/KestrelApp.h"
#include "KestrelApp/Launch.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv, argv + argc);
  if (kestrel::AppDelegate::applicationWillFinishLaunching(arguments)) return 0;
  return kestrel::launch(arguments, [&](const kestrel::Directories& directories) {
    return kestrel::KestrelApp(directories, arguments).run();
  });
}
