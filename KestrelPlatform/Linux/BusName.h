#pragma once

#include <functional>
#include <string>

#include "KestrelPlatform/Linux/BusLink.h"

namespace kestrel {

/// Follows who owns a well-known name, without ever starting the service. Main thread only; the link must
/// outlive it.
class BusName {
 public:
  /// Unknown until the bus has answered for the first time on a connection.
  enum class Presence { unknown, absent, present };

  BusName(BusLink& link, std::string name, std::function<void()> onChange);

  [[nodiscard]] Presence presence() const { return presence_; }
  /// Grows with every new owner and every new connection; 0 until there was an owner.
  [[nodiscard]] unsigned generation() const { return generation_; }
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  void followLink();
  void ask();
  void setOwner(const std::string& owner);

  BusLink& link_;
  const std::string name_;
  const std::function<void()> onChange_;
  Presence presence_ = Presence::unknown;
  std::string owner_;
  unsigned generation_ = 0;
  RegistrationPtr linkObserver_;
};

}  // namespace kestrel
