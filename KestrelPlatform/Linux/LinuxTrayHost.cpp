#include <optional>
#include <utility>

#include "KestrelCore/Support/Published.h"
#include "KestrelPlatform/Linux/BusLink.h"
#include "KestrelPlatform/Linux/BusName.h"
#include "KestrelPlatform/Linux/BusValues.h"
#include "KestrelPlatform/Linux/EmbeddingTray.h"
#include "KestrelPlatform/PlatformFactory.h"

namespace kestrel {
namespace {

constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
constexpr double kTimeoutSeconds = 5;
/// Panels that do both begin to embed a moment before they are on the bus.
constexpr double kSettleSeconds = 0.5;

/// Icons that are described on the session bus: they need somebody who keeps the list, and somebody who
/// shows it.
class NotifierHost {
 public:
  NotifierHost(Executor& executor, const std::shared_ptr<LogSink>& sink, std::function<void()> onChange)
      : onChange_(std::move(onChange)),
        link_(SdBus::Which::session, executor, Logger(sink, "tray")),
        linkObserver_(link_.observe([this] { followLink(); })),
        name_(link_, kWatcher, [this] { followName(); }) {
    followLink();
    followName();
  }

  /// Absent until the bus and the keeper of the list have answered.
  [[nodiscard]] std::optional<bool> isPresent() const {
    if (name_.presence() == BusName::Presence::unknown) return std::nullopt;
    return name_.presence() == BusName::Presence::present ? isRegistered_ : false;
  }
  [[nodiscard]] unsigned generation() const { return name_.generation(); }

 private:
  void followLink() {
    if (link_.bus() == nullptr) return;
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
      link_.bus()->match(std::string("type='signal',sender='") + kWatcher + "',path='" + kWatcherPath +
                             "',interface='" + kWatcher + "',member='" + signal + "'",
                         [this](sd_bus_message*) { ask(); });
    }
  }

  void followName() {
    isRegistered_ = false;
    if (name_.presence() == BusName::Presence::present) {
      isRegistered_.reset();
      ask();
    }
    onChange_();
  }

  void ask() {
    if (name_.presence() != BusName::Presence::present) return;
    auto call = link_.bus()->newCall(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get");
    call.append("ss", kWatcher, "IsStatusNotifierHostRegistered");
    link_.bus()->call(call, kTimeoutSeconds, [this, asked = name_.generation()](const BusReply& reply) {
      if (asked != name_.generation()) return;
      int status = 0;
      const auto value = reply.message == nullptr ? std::nullopt : readBusVariant(reply.message, status);
      const bool* registered = value ? std::get_if<bool>(&*value) : nullptr;
      isRegistered_ = registered != nullptr && *registered;
      onChange_();
    });
  }

  const std::function<void()> onChange_;
  std::optional<bool> isRegistered_ = false;
  BusLink link_;
  RegistrationPtr linkObserver_;
  BusName name_;
};

/// Both kinds of host. The toolkit settles on one of them when the first icon is made and keeps to it, so
/// only hosts of the kind that was met first count.
class LinuxTrayHost final : public TrayHost {
 public:
  LinuxTrayHost(Executor& executor, const std::shared_ptr<LogSink>& sink, bool onX11)
      : executor_(executor), notifier_(executor, sink, [this] { requestUpdate(); }) {
    if (onX11) embedding_ = std::make_unique<EmbeddingTray>(executor, [this] { requestUpdate(); });
    requestUpdate();
  }

  [[nodiscard]] unsigned present() const override { return present_; }
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange) override {
    return changed_.subscribe(std::move(onChange));
  }

 private:
  enum class Kind { notifier, embedding };
  struct Host {
    Kind kind;
    unsigned id;
    friend bool operator==(const Host&, const Host&) = default;
  };

  /// Later, since observers may end what tells of the change, and this may not be built yet.
  void requestUpdate() {
    update_ = executor_.after(0, [this] { update(); });
  }

  void update() {
    if (notifier_.isPresent() == true) return setHost(Host{Kind::notifier, notifier_.generation()});
    const xcb_window_t owner = embedding_ ? embedding_->owner() : static_cast<xcb_window_t>(XCB_NONE);
    if (owner == XCB_NONE) return setHost(std::nullopt);
    const Host host{Kind::embedding, owner};
    if (kind_) return setHost(host);
    settled_ = executor_.after(kSettleSeconds, [this, host] { setHost(host); });
  }

  void setHost(std::optional<Host> host) {
    settled_.reset();
    if (host && !kind_) kind_ = host->kind;
    if (host && host->kind != kind_) host.reset();
    if (host == host_) return;
    host_ = host;
    present_ = host ? ++last_ : 0;
    changed_();
  }

  Executor& executor_;
  RegistrationPtr update_;
  RegistrationPtr settled_;
  std::optional<Kind> kind_;
  std::optional<Host> host_;
  unsigned present_ = 0;
  unsigned last_ = 0;
  Signal<> changed_;
  NotifierHost notifier_;
  std::unique_ptr<EmbeddingTray> embedding_;
};

}  // namespace

std::unique_ptr<TrayHost> makeTrayHost(Executor& executor, const std::shared_ptr<LogSink>& logSink,
                                       bool onX11) {
  return std::make_unique<LinuxTrayHost>(executor, logSink, onX11);
}

}  // namespace kestrel
