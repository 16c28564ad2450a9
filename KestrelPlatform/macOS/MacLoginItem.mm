#include <ServiceManagement/ServiceManagement.h>

#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

std::string reasonOf(NSError* error) {
  const char* text = error.localizedDescription.UTF8String;
  return text != nullptr ? text : "unknown error";
}

class MacLoginItem final : public LoginItem {
 public:
  int status() override { return static_cast<int>([SMAppService mainAppService].status); }

  std::optional<std::string> registerItem() override {
    @autoreleasepool {
      NSError* error = nil;
      if ([[SMAppService mainAppService] registerAndReturnError:&error]) return std::nullopt;
      return reasonOf(error);
    }
  }
  std::optional<std::string> unregisterItem() override {
    @autoreleasepool {
      NSError* error = nil;
      if ([[SMAppService mainAppService] unregisterAndReturnError:&error]) return std::nullopt;
      return reasonOf(error);
    }
  }
};

}  // namespace

std::unique_ptr<LoginItem> makeMacLoginItem() {
  return std::make_unique<MacLoginItem>();
}

}  // namespace kestrel
