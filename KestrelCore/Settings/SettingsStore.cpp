#include "KestrelCore/Settings/SettingsStore.h"

#include <algorithm>
#include <utility>

namespace kestrel {
namespace {

// What a fresh installation reads, for the values that are more than a switch.
constexpr double kReleaseDelay = 30.0;
constexpr std::int64_t kBatteryFloor = 15;

std::int64_t clampedFloor(std::int64_t percent) {
  return std::clamp(percent, PolicyConfiguration::kMinimumBatteryFloor,
                    PolicyConfiguration::kMaximumBatteryFloor);
}

}  // namespace

SettingsStore::SettingsStore(UserDefaults& defaults, std::shared_ptr<const Clock> clock)
    : defaults_(defaults), clock_(std::move(clock)) {
  outsideChanges_ = defaults_.observeOutsideChanges([this] { changed_(); });
}

bool SettingsStore::announce(bool kept) {
  changed_();
  return kept;
}

bool SettingsStore::masterEnabled() const {
  return defaults_.boolForKey("masterEnabled").value_or(true);
}
bool SettingsStore::setMasterEnabled(bool value) {
  return announce(defaults_.setBool("masterEnabled", value));
}

bool SettingsStore::manualHoldEnabled() const {
  return defaults_.boolForKey("manualHoldEnabled").value_or(false);
}
bool SettingsStore::setManualHoldEnabled(bool value) {
  return announce(defaults_.setBool("manualHoldEnabled", value));
}

double SettingsStore::releaseDelaySeconds() const {
  return defaults_.doubleForKey("releaseDelaySeconds").value_or(kReleaseDelay);
}
bool SettingsStore::setReleaseDelaySeconds(double value) {
  return announce(defaults_.setDouble("releaseDelaySeconds", value));
}

std::int64_t SettingsStore::batteryFloorPercent() const {
  return defaults_.integerForKey("batteryFloorPercent").value_or(kBatteryFloor);
}
bool SettingsStore::setBatteryFloorPercent(std::int64_t value) {
  return announce(defaults_.setInteger("batteryFloorPercent", clampedFloor(value)));
}

bool SettingsStore::onlyOnAC() const {
  return defaults_.boolForKey("onlyOnAC").value_or(false);
}
bool SettingsStore::setOnlyOnAC(bool value) {
  return announce(defaults_.setBool("onlyOnAC", value));
}

bool SettingsStore::deepLidProtectionEnabled() const {
  return defaults_.boolForKey("deepLidProtectionEnabled").value_or(true);
}
bool SettingsStore::setDeepLidProtectionEnabled(bool value) {
  return announce(defaults_.setBool("deepLidProtectionEnabled", value));
}

bool SettingsStore::preventDisplaySleep() const {
  return defaults_.boolForKey("preventDisplaySleep").value_or(false);
}
bool SettingsStore::setPreventDisplaySleep(bool value) {
  return announce(defaults_.setBool("preventDisplaySleep", value));
}

bool SettingsStore::notificationsEnabled() const {
  return defaults_.boolForKey("notificationsEnabled").value_or(true);
}
bool SettingsStore::setNotificationsEnabled(bool value) {
  return announce(defaults_.setBool("notificationsEnabled", value));
}

bool SettingsStore::soundEnabled() const {
  return defaults_.boolForKey("soundEnabled").value_or(true);
}
bool SettingsStore::setSoundEnabled(bool value) {
  return announce(defaults_.setBool("soundEnabled", value));
}

bool SettingsStore::launchAtLogin() const {
  return defaults_.boolForKey("launchAtLogin").value_or(false);
}
bool SettingsStore::setLaunchAtLogin(bool value) {
  return announce(defaults_.setBool("launchAtLogin", value));
}

bool SettingsStore::hasCompletedOnboarding() const {
  return defaults_.boolForKey("hasCompletedOnboarding").value_or(false);
}
bool SettingsStore::setHasCompletedOnboarding(bool value) {
  return announce(defaults_.setBool("hasCompletedOnboarding", value));
}

std::optional<Date> SettingsStore::pauseUntil() const {
  return defaults_.dateForKey("pauseUntil");
}
bool SettingsStore::setPauseUntil(std::optional<Date> value) {
  return announce(value ? defaults_.setDate("pauseUntil", *value) : defaults_.remove("pauseUntil"));
}

PolicyConfiguration SettingsStore::policyConfig() const {
  PolicyConfiguration configuration;
  configuration.masterEnabled = masterEnabled();
  configuration.manualHoldEnabled = manualHoldEnabled();
  configuration.batteryFloorPercent = batteryFloorPercent();
  configuration.onlyOnAC = onlyOnAC();
  configuration.releaseDebounceSeconds = std::min(releaseDelaySeconds(), kMaximumReleaseDelay);
  configuration.deepLidProtectionEnabled = deepLidProtectionEnabled();
  return configuration.clamped();
}

bool SettingsStore::pause(double seconds) {
  return setPauseUntil(clock_->now() + seconds);
}
bool SettingsStore::resume() {
  return setPauseUntil(std::nullopt);
}

bool SettingsStore::resetToDefaults() {
  bool kept = setMasterEnabled(true);
  kept = setManualHoldEnabled(false) && kept;
  kept = setReleaseDelaySeconds(kReleaseDelay) && kept;
  kept = setBatteryFloorPercent(kBatteryFloor) && kept;
  kept = setOnlyOnAC(false) && kept;
  kept = setDeepLidProtectionEnabled(true) && kept;
  kept = setPreventDisplaySleep(false) && kept;
  kept = setNotificationsEnabled(true) && kept;
  kept = setSoundEnabled(true) && kept;
  kept = setPauseUntil(std::nullopt) && kept;
  return setHasCompletedOnboarding(false) && kept;
}

RegistrationPtr SettingsStore::observe(std::function<void()> onChange) {
  return changed_.subscribe(std::move(onChange));
}

}  // namespace kestrel
