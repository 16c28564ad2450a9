#pragma once

#include <memory>
#include <optional>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Platform/PowerSource.h"
#include "KestrelCore/Support/Published.h"
#include "KestrelPlatform/Linux/BusLink.h"
#include "KestrelPlatform/Linux/BusProperties.h"

namespace kestrel {

/// The services that tell of the hardware, over one connection that all readings share: UPower, the power
/// profiles and the login manager. An answer is absent as long as its service is not there. Main thread only;
/// the executor must outlive it.
class HardwareServices {
 public:
  HardwareServices(Executor& executor, const std::shared_ptr<LogSink>& sink);

  [[nodiscard]] std::optional<PowerSourceDescription> power() const;
  /// Also absent when UPower sees no lid.
  [[nodiscard]] std::optional<bool> lidByUPower() const;
  /// False on machines without a lid.
  [[nodiscard]] std::optional<bool> lidByLoginManager() const;
  [[nodiscard]] std::optional<bool> isPowerSaving() const;

  /// The login manager never tells of the lid.
  void readLoginManager() { loginManager_.read(); }

  [[nodiscard]] RegistrationPtr observeUPower(std::function<void()> onChange) {
    return upowerChanged_.subscribe(std::move(onChange));
  }
  [[nodiscard]] RegistrationPtr observeLoginManager(std::function<void()> onChange) {
    return loginManagerChanged_.subscribe(std::move(onChange));
  }
  [[nodiscard]] RegistrationPtr observeProfiles(std::function<void()> onChange) {
    return profilesChanged_.subscribe(std::move(onChange));
  }

 private:
  Signal<> upowerChanged_;
  Signal<> loginManagerChanged_;
  Signal<> profilesChanged_;
  BusLink link_;
  BusProperties upower_;
  BusProperties loginManager_;
  BusProperties profiles_;
  /// The name by which older systems know them.
  BusProperties oldProfiles_;
};

}  // namespace kestrel
