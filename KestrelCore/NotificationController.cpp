#include "KestrelCore/NotificationController.h"

#include <fmt/format.h>
#include <utility>

namespace kestrel {
namespace {

constexpr std::string_view kChimeName = "Hero";

}  // namespace

NotificationController::NotificationController(UserNotifications& centre, Chime& chime,
                                               const SettingsStore& settings, std::shared_ptr<LogSink> sink)
    : centre_(centre), chime_(chime), settings_(settings), logger_(std::move(sink), "notifications") {}

void NotificationController::requestAuthorization() {
  if (!centre_.isAvailable()) return;
  constexpr std::uint32_t kOptions =
      UserNotifications::kAlert | UserNotifications::kSound | UserNotifications::kBadge;
  centre_.requestAuthorization(
      kOptions, [logger = logger_](const UserNotifications::Authorization& authorization) {
        if (authorization.error) {
          logger.error("Notification permission error: {}", *authorization.error);
        } else {
          logger.info("Notification permission granted: {}", authorization.isGranted);
        }
      });
}

void NotificationController::notifyProtectionStarted(std::int64_t agentCount) {
  notify({"kestrel.started", "Kestrel is protecting this Mac",
          fmt::format("{} coding agent session{} working.", agentCount, agentCount == 1 ? "" : "s")});
}

void NotificationController::notifyBatteryCutoff(std::int64_t percent) {
  notify({"kestrel.battery", "Battery limit reached",
          fmt::format("Kestrel released sleep protection at {}%.", percent)});
}

void NotificationController::notifyThermalCutoff() {
  notify({"kestrel.thermal", "Thermal safety cutoff",
          "Kestrel released sleep protection so macOS can cool down normally."});
}

void NotificationController::notifyProtectionFinished() {
  notify({"kestrel.finished", "Coding agents finished", "Normal sleep behavior has been restored."});
}

void NotificationController::playChime() {
  if (!settings_.soundEnabled()) return;
  chime_.play(kChimeName, [&chime = chime_] { chime.beep(); });
}

void NotificationController::notify(const UserNotification& notification) {
  if (!settings_.notificationsEnabled()) return;
  postNotification(notification);
  playChime();
}

void NotificationController::postNotification(const UserNotification& notification) {
  if (!centre_.isAvailable()) return;
  centre_.post(notification, [logger = logger_](const std::string& reason) {
    logger.error("Failed to post notification: {}", reason);
  });
}

}  // namespace kestrel
