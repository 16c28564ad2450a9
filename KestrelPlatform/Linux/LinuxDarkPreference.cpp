#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "KestrelPlatform/Linux/BusLink.h"
#include "KestrelPlatform/Linux/BusName.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr const char* kNamespace = "org.freedesktop.appearance";
constexpr const char* kKey = "color-scheme";
/// The standard's values; anything else is no preference.
constexpr std::uint32_t kDark = 1;
constexpr std::uint32_t kLight = 2;
constexpr double kTimeoutSeconds = 5;

/// The answer to Read is wrapped in one variant more than the signal's value.
std::optional<bool> readPreference(sd_bus_message* message) {
  char type = 0;
  const char* contents = nullptr;
  while (sd_bus_message_peek_type(message, &type, &contents) > 0 && type == SD_BUS_TYPE_VARIANT) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents) <= 0) return std::nullopt;
  }
  std::uint32_t scheme = 0;
  if (type != SD_BUS_TYPE_UINT32 || sd_bus_message_read_basic(message, type, &scheme) <= 0)
    return std::nullopt;
  return scheme == kDark || scheme == kLight ? std::optional(scheme == kDark) : std::nullopt;
}

/// The desktop portal's setting. The portal is not started for it.
class PortalPreference final : public Registration {
 public:
  PortalPreference(Executor& executor, const std::shared_ptr<LogSink>& sink,
                   std::function<void(std::optional<bool>)> onChange)
      : onChange_(std::move(onChange)),
        link_(SdBus::Which::session, executor, Logger(sink, "appearance")),
        linkObserver_(link_.observe([this] { followLink(); })),
        name_(link_, kPortal, [this] { followName(); }) {
    followLink();
  }

 private:
  void followLink() {
    if (link_.bus() == nullptr) return;
    link_.bus()->match(std::string("type='signal',sender='") + kPortal + "',path='" + kPath +
                           "',interface='" + kSettings + "',member='SettingChanged',arg0='" + kNamespace +
                           "',arg1='" + kKey + "'",
                       [this](sd_bus_message* signal) {
                         if (sd_bus_message_skip(signal, "ss") > 0) tell(readPreference(signal));
                       });
  }

  void followName() {
    if (name_.presence() != BusName::Presence::present) return tell(std::nullopt);
    auto call = link_.bus()->newCall(kPortal, kPath, kSettings, "Read");
    call.append("ss", kNamespace, kKey);
    link_.bus()->call(call, kTimeoutSeconds, [this, asked = name_.generation()](const BusReply& reply) {
      if (asked != name_.generation()) return;
      tell(reply.message == nullptr ? std::nullopt : readPreference(reply.message));
    });
  }

  void tell(std::optional<bool> prefersDark) {
    if (prefersDark == std::exchange(told_, prefersDark)) return;
    onChange_(prefersDark);
  }

  const std::function<void(std::optional<bool>)> onChange_;
  std::optional<bool> told_;
  BusLink link_;
  RegistrationPtr linkObserver_;
  BusName name_;
};

}  // namespace

RegistrationPtr followDarkPreference(Executor& executor, const std::shared_ptr<LogSink>& logSink,
                                     std::function<void(std::optional<bool>)> onChange) {
  return std::make_unique<PortalPreference>(executor, logSink, std::move(onChange));
}

}  // namespace kestrel
