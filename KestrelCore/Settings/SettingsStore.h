#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "KestrelCore/Platform/UserDefaults.h"
#include "KestrelCore/Policy/PolicyConfiguration.h"
#include "KestrelCore/Support/Clock.h"
#include "KestrelCore/Support/Published.h"

namespace kestrel {

/// Every user preference. Keeps no copy: each read goes to the defaults database, and each write goes there
/// first and is then announced. A missing value, or one of the wrong type, reads as the default. Main thread,
/// but for the readers. Setters return whether the value was kept; they announce it in any case.
class SettingsStore {
 public:
  /// The policy's grace period is bounded, in seconds: a delay beyond any life of a machine is a mistake.
  static constexpr double kMaximumReleaseDelay = 1e9;

  SettingsStore(UserDefaults& defaults, std::shared_ptr<const Clock> clock);

  /// Master switch of protection; true by default.
  [[nodiscard]] bool masterEnabled() const;
  bool setMasterEnabled(bool value);
  /// Keep awake regardless of agents; false by default.
  [[nodiscard]] bool manualHoldEnabled() const;
  bool setManualHoldEnabled(bool value);
  /// Seconds of grace after the last agent stopped, as stored; 30 by default.
  [[nodiscard]] double releaseDelaySeconds() const;
  bool setReleaseDelaySeconds(double value);
  /// Percent; 15 by default, stored within 5 to 50.
  [[nodiscard]] std::int64_t batteryFloorPercent() const;
  bool setBatteryFloorPercent(std::int64_t value);
  /// Protect only on mains power; false by default.
  [[nodiscard]] bool onlyOnAC() const;
  bool setOnlyOnAC(bool value);
  /// Ask for the lid-closed hold while holding; true by default.
  [[nodiscard]] bool deepLidProtectionEnabled() const;
  bool setDeepLidProtectionEnabled(bool value);
  /// Keep the display awake too; false by default.
  [[nodiscard]] bool preventDisplaySleep() const;
  bool setPreventDisplaySleep(bool value);
  /// Post user notifications; true by default.
  [[nodiscard]] bool notificationsEnabled() const;
  bool setNotificationsEnabled(bool value);
  /// Play the chime with notifications; true by default.
  [[nodiscard]] bool soundEnabled() const;
  bool setSoundEnabled(bool value);
  /// Mirror of the login item; false by default.
  [[nodiscard]] bool launchAtLogin() const;
  bool setLaunchAtLogin(bool value);
  /// Onboarding is shown once; false by default.
  [[nodiscard]] bool hasCompletedOnboarding() const;
  bool setHasCompletedOnboarding(bool value);
  /// End of a pause, which may be over; absent by default, and absent removes it.
  [[nodiscard]] std::optional<Date> pauseUntil() const;
  bool setPauseUntil(std::optional<Date> value);

  /// The settings as the policy needs them, within their ranges.
  [[nodiscard]] PolicyConfiguration policyConfig() const;

  bool pause(double seconds);
  bool resume();

  /// Writes every default but that of `launchAtLogin`, which mirrors the system's state.
  bool resetToDefaults();

  /// Calls back on the main thread after each change, made here or by another process.
  [[nodiscard]] RegistrationPtr observe(std::function<void()> onChange);

 private:
  bool announce(bool kept);

  UserDefaults& defaults_;
  const std::shared_ptr<const Clock> clock_;
  Signal<> changed_;
  RegistrationPtr outsideChanges_;
};

}  // namespace kestrel
