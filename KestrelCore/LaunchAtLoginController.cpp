#include "KestrelCore/LaunchAtLoginController.h"

#include <utility>

namespace kestrel {

LaunchAtLoginController::LaunchAtLoginController(LoginItem& item, std::shared_ptr<LogSink> sink)
    : item_(item), logger_(std::move(sink), "login") {}

bool LaunchAtLoginController::setEnabled(bool enabled) {
  if (isEnabled() == enabled) return true;
  const auto failure = enabled ? item_.registerItem() : item_.unregisterItem();
  if (failure) {
    logger_.error("Failed to update launch at login: {}", *failure);
    return false;
  }
  logger_.info("{} launch at login", enabled ? "Registered" : "Unregistered");
  return true;
}

std::string LaunchAtLoginController::statusDescription() const {
  switch (item_.status()) {
    case LoginItem::kNotRegistered:
      return "Not Registered";
    case LoginItem::kEnabled:
      return "Enabled";
    case LoginItem::kRequiresApproval:
      return "Requires User Approval in System Settings";
    case LoginItem::kNotFound:
      return "App Not Found";
    default:
      return "Unknown";
  }
}

}  // namespace kestrel
