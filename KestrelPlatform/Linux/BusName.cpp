#include "KestrelPlatform/Linux/BusName.h"

#include <string_view>
#include <utility>

namespace kestrel {
namespace {

constexpr const char* kBusService = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
constexpr double kTimeoutSeconds = 5;

}  // namespace

BusName::BusName(BusLink& link, std::string name, std::function<void()> onChange)
    : link_(link), name_(std::move(name)), onChange_(std::move(onChange)) {
  linkObserver_ = link_.observe([this] {
    followLink();
    onChange_();
  });
  followLink();
}

void BusName::followLink() {
  owner_.clear();
  presence_ = link_.bus() == nullptr ? Presence::absent : Presence::unknown;
  if (link_.bus() != nullptr) ask();
}

/// The watch is set before the question, so that no change can fall between the two.
void BusName::ask() {
  link_.bus()->match(
      std::string("type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',") +
          "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" + name_ + "'",
      [this](sd_bus_message* signal) {
        const char *name = nullptr, *oldOwner = nullptr, *newOwner = nullptr;
        if (sd_bus_message_read(signal, "sss", &name, &oldOwner, &newOwner) > 0) setOwner(newOwner);
      });
  auto question = link_.bus()->newCall(kBusService, kBusPath, kBusService, "GetNameOwner");
  question.append("s", name_.c_str());
  link_.bus()->call(question, kTimeoutSeconds, [this](const BusReply& reply) {
    const char* owner = "";
    if (reply.message != nullptr) sd_bus_message_read(reply.message, "s", &owner);
    setOwner(owner);
  });
}

void BusName::setOwner(const std::string& owner) {
  const Presence presence = owner.empty() ? Presence::absent : Presence::present;
  if (presence == presence_ && owner == owner_) return;
  presence_ = presence;
  owner_ = owner;
  if (!owner.empty()) ++generation_;
  onChange_();
}

}  // namespace kestrel
