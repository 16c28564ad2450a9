#include <UserNotifications/UserNotifications.h>

#include <utility>

#include "KestrelPlatform/macOS/CFValues.h"
#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

namespace {

static_assert(UserNotifications::kAlert == UNAuthorizationOptionAlert);
static_assert(UserNotifications::kSound == UNAuthorizationOptionSound);
static_assert(UserNotifications::kBadge == UNAuthorizationOptionBadge);

NSString* stringFrom(const std::string& text) {
  return (__bridge_transfer NSString*)makeCFString(text).release();
}

std::string reasonOf(NSError* error) {
  const char* text = error.localizedDescription.UTF8String;
  return text != nullptr ? text : "unknown error";
}

/// Asking for the centre ends a process that is no application bundle.
class MacUserNotifications final : public UserNotifications {
 public:
  bool isAvailable() override {
    @autoreleasepool {
      NSBundle* bundle = [NSBundle mainBundle];
      return [bundle.bundleURL.pathExtension isEqualToString:@"app"] && bundle.bundleIdentifier.length > 0;
    }
  }

  void requestAuthorization(std::uint32_t options, std::function<void(Authorization)> completion) override {
    @autoreleasepool {
      [[UNUserNotificationCenter currentNotificationCenter]
          requestAuthorizationWithOptions:options
                        completionHandler:^(BOOL granted, NSError* error) {
                          Authorization answer{static_cast<bool>(granted), std::nullopt};
                          if (error != nil) answer.error = reasonOf(error);
                          completion(std::move(answer));
                        }];
    }
  }

  void post(const UserNotification& notification, std::function<void(std::string)> onFailure) override {
    @autoreleasepool {
      UNMutableNotificationContent* content = [[UNMutableNotificationContent alloc] init];
      content.title = stringFrom(notification.title);
      content.body = stringFrom(notification.body);
      content.sound = [UNNotificationSound defaultSound];
      UNNotificationRequest* request =
          [UNNotificationRequest requestWithIdentifier:stringFrom(notification.identifier)
                                               content:content
                                               trigger:nil];
      [[UNUserNotificationCenter currentNotificationCenter] addNotificationRequest:request
                                                             withCompletionHandler:^(NSError* error) {
                                                               if (error != nil) onFailure(reasonOf(error));
                                                             }];
    }
  }
};

}  // namespace

std::unique_ptr<UserNotifications> makeMacUserNotifications() {
  return std::make_unique<MacUserNotifications>();
}

}  // namespace kestrel
