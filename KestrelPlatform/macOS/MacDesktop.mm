#import <AppKit/AppKit.h>

#include <utility>

#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

/// The menu bar is always there.
class MacTrayHost final : public TrayHost {
 public:
  unsigned present() const override { return 1; }
  RegistrationPtr observe(std::function<void()>) override { return nullptr; }
};

}  // namespace

bool mayHaveDisplay() {
  return true;
}

DesktopTraits desktopTraits() {
  return {.tintsIcons = true, .hostOpensMenu = false};
}

void becomeAccessory() {
  [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

std::unique_ptr<TrayHost> makeTrayHost(Executor&, const std::shared_ptr<LogSink>&, bool) {
  return std::make_unique<MacTrayHost>();
}

RegistrationPtr followDarkPreference(Executor&, const std::shared_ptr<LogSink>&,
                                     std::function<void(std::optional<bool>)>) {
  return nullptr;
}

std::optional<std::filesystem::path> companionProgram(const std::string&) {
  return std::nullopt;
}

}  // namespace kestrel
