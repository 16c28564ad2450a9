#include <AppKit/AppKit.h>

#include <optional>
#include <string>

#include "KestrelCore/Platform/RunningApplications.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

std::optional<std::string> textOf(NSString* string) {
  const char* text = string.UTF8String;
  return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

/// The workspace may be asked on any thread; its list follows the system only while the main run loop runs.
class MacRunningApplications final : public RunningApplications {
 public:
  std::vector<RunningApplication> list(const std::vector<ProcessRow>&) override {
    std::vector<RunningApplication> applications;
    // The monitor's thread has no pool of its own.
    @autoreleasepool {
      for (NSRunningApplication* each in [NSWorkspace sharedWorkspace].runningApplications) {
        applications.push_back(
            {textOf(each.localizedName), textOf(each.bundleIdentifier), each.processIdentifier});
      }
    }
    return applications;
  }
};

}  // namespace

std::unique_ptr<RunningApplications> makeMacRunningApplications() {
  return std::make_unique<MacRunningApplications>();
}

}  // namespace kestrel
