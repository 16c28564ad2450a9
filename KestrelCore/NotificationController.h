#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "KestrelCore/Platform/Chime.h"
#include "KestrelCore/Platform/UserNotifications.h"
#include "KestrelCore/Settings/SettingsStore.h"
#include "KestrelCore/Support/Logger.h"

namespace kestrel {

/// Tells the user how protection begins and ends, and plays the chime, as far as the settings of the moment
/// allow. Failures are only logged. Main thread.
class NotificationController {
 public:
  /// All three outlive the controller.
  NotificationController(UserNotifications& centre, Chime& chime, const SettingsStore& settings,
                         std::shared_ptr<LogSink> sink);

  /// Asks for alerts, sounds and badges. Does nothing without a centre, as posting does.
  void requestAuthorization();

  // Nothing at all while notifications are disabled; otherwise a notification, then the chime. Each kind
  // replaces its own earlier one.
  void notifyProtectionStarted(std::int64_t agentCount);
  void notifyBatteryCutoff(std::int64_t percent);
  void notifyThermalCutoff();
  void notifyProtectionFinished();

  /// Nothing while sounds are disabled.
  void playChime();

 private:
  void notify(const UserNotification& notification);
  void postNotification(const UserNotification& notification);

  UserNotifications& centre_;
  Chime& chime_;
  const SettingsStore& settings_;
  const Logger logger_;
};

}  // namespace kestrel
