#include "KestrelPlatform/Linux/DesktopService.h"

#include <utility>

#include "KestrelPlatform/Linux/BusText.h"

namespace kestrel {
namespace {

/// Some desktops ask the person before they answer.
constexpr double kTakeTimeoutSeconds = 300;
constexpr double kReadBackTimeoutSeconds = 5;
/// What the session manager's flags mean.
constexpr std::uint32_t kIdleSuspendFlag = 4;
constexpr std::uint32_t kIdleDisplayFlag = 8;

std::uint32_t flags(HoldKind kind) {
  return kind == HoldKind::display ? kIdleDisplayFlag : kIdleSuspendFlag;
}

}  // namespace

const DesktopService::Dialect DesktopService::kSessionManager{"desktop session",
                                                              "org.gnome.SessionManager",
                                                              "/org/gnome/SessionManager",
                                                              "org.gnome.SessionManager",
                                                              "Uninhibit",
                                                              "IsInhibited",
                                                              true};
const DesktopService::Dialect DesktopService::kPowerManagement{"power management",
                                                               "org.freedesktop.PowerManagement",
                                                               "/org/freedesktop/PowerManagement/Inhibit",
                                                               "org.freedesktop.PowerManagement.Inhibit",
                                                               "UnInhibit",
                                                               "HasInhibit",
                                                               false};
const DesktopService::Dialect DesktopService::kScreenSaver{"screen saver",
                                                           "org.freedesktop.ScreenSaver",
                                                           "/org/freedesktop/ScreenSaver",
                                                           "org.freedesktop.ScreenSaver",
                                                           "UnInhibit",
                                                           nullptr,
                                                           false};

class DesktopService::Cookie final : public InhibitorService::Grant {
 public:
  Cookie(DesktopService& service, std::uint32_t value)
      : service_(service), value_(value), generation_(service.generation()) {}
  ~Cookie() override { service_.giveBack(value_, generation_); }
  Cookie(const Cookie&) = delete;
  Cookie& operator=(const Cookie&) = delete;

 private:
  DesktopService& service_;
  const std::uint32_t value_;
  const unsigned generation_;
};

DesktopService::DesktopService(const Dialect& dialect, BusLink& link, std::function<void()> onPresence)
    : dialect_(dialect),
      title_(dialect.title),
      link_(link),
      name_(link, dialect.service, std::move(onPresence)) {}

std::string DesktopService::absence() const {
  return link_.bus() == nullptr ? link_.problem() : title_ + " service is not running";
}

BusMessage DesktopService::newCall(const char* member) {
  return link_.bus()->newCall(dialect_.service, dialect_.path, dialect_.interface, member);
}

void DesktopService::take(HoldKind kind, const std::string& reason, AnswerHandler handler) {
  if (link_.bus() == nullptr) return;
  auto call = newCall("Inhibit");
  if (dialect_.hasFlags) {
    constexpr std::uint32_t kNoWindow = 0;
    call.append("susu", kInhibitorName, kNoWindow, reason.c_str(), flags(kind));
  } else {
    call.append("ss", kInhibitorName, reason.c_str());
  }
  link_.bus()->call(call, kTakeTimeoutSeconds, [this, handler = std::move(handler)](const BusReply& reply) {
    std::uint32_t cookie = 0;
    if (reply.message == nullptr) return handler({nullptr, reply.failure});
    const int status = sd_bus_message_read(reply.message, "u", &cookie);
    if (status < 0) return handler({nullptr, busErrorText(status)});
    handler({std::make_unique<Cookie>(*this, cookie), {}});
  });
}

void DesktopService::readBack(HoldKind kind, const std::string&, ReadBackHandler handler) {
  if (link_.bus() == nullptr) return;
  if (dialect_.readBack == nullptr) return handler(true);
  auto call = newCall(dialect_.readBack);
  if (dialect_.hasFlags) call.append("u", flags(kind));
  link_.bus()->call(call, kReadBackTimeoutSeconds, [handler = std::move(handler)](const BusReply& reply) {
    int inhibited = 0;
    if (reply.errorName == SD_BUS_ERROR_UNKNOWN_METHOD) return handler(true);
    if (reply.message == nullptr || sd_bus_message_read(reply.message, "b", &inhibited) < 0) {
      return handler(std::nullopt);
    }
    handler(inhibited != 0);
  });
}

/// A cookie of an earlier process or connection is unknown by now, or has become somebody else's.
void DesktopService::giveBack(std::uint32_t cookie, unsigned generation) {
  if (link_.bus() == nullptr || generation != name_.generation()) return;
  auto call = newCall(dialect_.giveBack);
  call.append("u", cookie);
  link_.bus()->send(call);
}

}  // namespace kestrel
