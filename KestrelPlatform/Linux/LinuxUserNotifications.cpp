#include "KestrelPlatform/Linux/LinuxUserNotifications.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "KestrelCore/Support/Logger.h"
#include "KestrelPlatform/Linux/BusLink.h"
#include "KestrelPlatform/Linux/BusName.h"
#include "KestrelPlatform/Linux/BusText.h"

namespace kestrel {
namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr const char* kProgram = "Kestrel";
constexpr const char* kSoundHint = "sound-name";
constexpr const char* kDefaultSound = "message-new-instant";
/// As long as a service may need to be started.
constexpr double kTimeoutSeconds = 25;

/// One connection's dealings with the service: what it calls our notifications, and what waits for it.
class NotificationService {
 public:
  NotificationService(Executor& executor, const Logger& logger)
      : logger_(logger),
        link_(SdBus::Which::session, executor, logger),
        name_(link_, kService, [] {}),
        linkObserver_(link_.observe([this] { shown_.clear(); })) {}

  [[nodiscard]] bool isReachable() const { return link_.bus() != nullptr; }

  /// While the service has not answered for a notification, only the latest of the same identifier waits: it
  /// cannot replace what has no number yet.
  void post(const UserNotification& notification, std::function<void(std::string)> onFailure) {
    Shown& shown = shown_[notification.identifier];
    if (shown.isAsked) {
      shown.next = Request{notification, std::move(onFailure)};
    } else {
      send(shown, {notification, std::move(onFailure)});
    }
  }

 private:
  struct Request {
    UserNotification notification;
    std::function<void(std::string)> onFailure;
  };
  struct Shown {
    /// The service's number for it, and which process of the service gave it.
    std::uint32_t id = 0;
    unsigned generation = 0;
    bool isAsked = false;
    std::optional<Request> next;
  };

  void send(Shown& shown, Request request) {
    if (!isReachable()) return;
    const UserNotification& notification = request.notification;
    constexpr std::int32_t kServiceDecides = -1;
    const std::uint32_t replaced = shown.generation == name_.generation() ? shown.id : 0;
    auto call = link_.bus()->newCall(kService, kPath, kService, "Notify");
    call.append("susssasa{sv}i", kProgram, replaced, "", busText(notification.title).c_str(),
                busText(notification.body).c_str(), 0, 1, kSoundHint, "s", kDefaultSound, kServiceDecides);
    if (call.status() >= 0) sd_bus_message_set_auto_start(call.get(), 1);
    shown.isAsked = true;
    // The record outlives the call: both end with the connection.
    link_.bus()->call(
        call, kTimeoutSeconds,
        [this, &shown, request = std::move(request)](const BusReply& reply) { take(shown, request, reply); });
  }

  void take(Shown& shown, const Request& request, const BusReply& reply) {
    shown.isAsked = false;
    shown.id = 0;
    shown.generation = name_.generation();
    int status = 0;
    if (reply.message != nullptr) status = sd_bus_message_read(reply.message, "u", &shown.id);
    if (reply.message == nullptr) {
      tellFailure(request, reply);
    } else if (status < 0) {
      request.onFailure(busErrorText(status));
    } else {
      isAbsenceSaid_ = false;
    }
    if (auto next = std::exchange(shown.next, std::nullopt)) send(shown, *std::move(next));
  }

  /// That there is no service is no failure, and is said once.
  void tellFailure(const Request& request, const BusReply& reply) {
    const bool isAbsent =
        reply.errorName == SD_BUS_ERROR_SERVICE_UNKNOWN || reply.errorName == SD_BUS_ERROR_NAME_HAS_NO_OWNER;
    if (!isAbsent) return request.onFailure(reply.failure);
    if (!std::exchange(isAbsenceSaid_, true))
      logger_.info("Notifications are not available here: {}", reply.failure);
  }

  const Logger logger_;
  BusLink link_;
  BusName name_;
  std::map<std::string, Shown> shown_;
  bool isAbsenceSaid_ = false;
  RegistrationPtr linkObserver_;
};

class LinuxUserNotifications final : public UserNotifications {
 public:
  LinuxUserNotifications(Executor& executor, std::shared_ptr<LogSink> sink)
      : executor_(executor), logger_(std::move(sink), "notifications") {}

  [[nodiscard]] bool isAvailable() override {
    if (!service_) service_.emplace(executor_, logger_);
    return service_->isReachable();
  }
  void requestAuthorization(std::uint32_t, std::function<void(Authorization)> completion) override {
    executor_.post([completion = std::move(completion)] { completion({true, std::nullopt}); });
  }
  void post(const UserNotification& notification, std::function<void(std::string)> onFailure) override {
    if (isAvailable()) service_->post(notification, std::move(onFailure));
  }

 private:
  Executor& executor_;
  const Logger logger_;
  std::optional<NotificationService> service_;
};

}  // namespace

std::unique_ptr<UserNotifications> makeLinuxUserNotifications(Executor& executor,
                                                              std::shared_ptr<LogSink> sink) {
  return std::make_unique<LinuxUserNotifications>(executor, std::move(sink));
}

}  // namespace kestrel
