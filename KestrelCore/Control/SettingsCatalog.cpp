#include "KestrelCore/Control/SettingsCatalog.h"

#include <algorithm>
#include <array>
#include <variant>

#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

struct Switch {
  bool (SettingsStore::*get)() const;
  bool (SettingsStore::*set)(bool);
};
struct Percent {
  std::int64_t (SettingsStore::*get)() const;
  bool (SettingsStore::*set)(std::int64_t);
};
struct Seconds {
  double (SettingsStore::*get)() const;
  bool (SettingsStore::*set)(double);
};
struct Instant {
  std::optional<Date> (SettingsStore::*get)() const;
  bool (SettingsStore::*set)(std::optional<Date>);
};
struct Setting {
  std::string_view key;
  std::variant<Switch, Percent, Seconds, Instant> access;
};

using S = SettingsStore;
const std::array<Setting, 12> kSettings{{
    {"masterEnabled", Switch{&S::masterEnabled, &S::setMasterEnabled}},
    {"manualHoldEnabled", Switch{&S::manualHoldEnabled, &S::setManualHoldEnabled}},
    {"releaseDelaySeconds", Seconds{&S::releaseDelaySeconds, &S::setReleaseDelaySeconds}},
    {"batteryFloorPercent", Percent{&S::batteryFloorPercent, &S::setBatteryFloorPercent}},
    {"onlyOnAC", Switch{&S::onlyOnAC, &S::setOnlyOnAC}},
    {"deepLidProtectionEnabled", Switch{&S::deepLidProtectionEnabled, &S::setDeepLidProtectionEnabled}},
    {"preventDisplaySleep", Switch{&S::preventDisplaySleep, &S::setPreventDisplaySleep}},
    {"notificationsEnabled", Switch{&S::notificationsEnabled, &S::setNotificationsEnabled}},
    {"soundEnabled", Switch{&S::soundEnabled, &S::setSoundEnabled}},
    {"launchAtLogin", Switch{&S::launchAtLogin, &S::setLaunchAtLogin}},
    {"hasCompletedOnboarding", Switch{&S::hasCompletedOnboarding, &S::setHasCompletedOnboarding}},
    {"pauseUntil", Instant{&S::pauseUntil, &S::setPauseUntil}},
}};

Json toJson(bool value) {
  return value;
}
Json toJson(std::int64_t value) {
  return value;
}
Json toJson(double value) {
  return value;
}
Json toJson(const std::optional<Date>& value) {
  return value ? Json(iso8601(*value)) : Json(nullptr);
}

/// The word as a JSON value, or null.
Json literal(std::string_view word) {
  if (word == "on") return true;
  if (word == "off") return false;
  try {
    return parseJson(word);
  } catch (const DecodingError&) {
    return nullptr;
  }
}

enum class Outcome { stored, notStored, wrongWord };

Outcome outcome(bool stored) {
  return stored ? Outcome::stored : Outcome::notStored;
}

Outcome apply(SettingsStore& settings, const Switch& access, std::string_view word) {
  const Json value = literal(word);
  return value.is_boolean() ? outcome((settings.*access.set)(value.get<bool>())) : Outcome::wrongWord;
}

Outcome apply(SettingsStore& settings, const Percent& access, std::string_view word) {
  const auto value = optionalInteger({{"value", literal(word)}}, "value");
  return value ? outcome((settings.*access.set)(*value)) : Outcome::wrongWord;
}

Outcome apply(SettingsStore& settings, const Seconds& access, std::string_view word) {
  const auto value = optionalDouble({{"value", literal(word)}}, "value");
  return value ? outcome((settings.*access.set)(*value)) : Outcome::wrongWord;
}

Outcome apply(SettingsStore& settings, const Instant& access, std::string_view word) {
  if (word == "none" || word == "null") return outcome((settings.*access.set)(std::nullopt));
  const auto date = parseISO8601(word);
  return date ? outcome((settings.*access.set)(date)) : Outcome::wrongWord;
}

std::string_view expectedWord(const Setting& setting) {
  constexpr std::array<std::string_view, 4> kWords{"true or false", "a whole number", "a number of seconds",
                                                   "a date such as 2026-11-21T18:00:00Z, or none"};
  return kWords[setting.access.index()];
}

}  // namespace

Json settingsReport(const SettingsStore& settings) {
  Json report = Json::object();
  for (const auto& setting : kSettings) {
    report[std::string(setting.key)] =
        std::visit([&](const auto& access) { return toJson((settings.*access.get)()); }, setting.access);
  }
  return report;
}

std::optional<std::string> setSetting(SettingsStore& settings, std::string_view key, std::string_view word) {
  const auto* setting = std::ranges::find(kSettings, key, &Setting::key);
  if (setting == kSettings.end()) return "There is no setting '" + std::string(key) + "'";
  const Outcome result =
      std::visit([&](const auto& access) { return apply(settings, access, word); }, setting->access);
  if (result == Outcome::wrongWord) return std::string(key) + " takes " + std::string(expectedWord(*setting));
  if (result == Outcome::notStored) return "The setting could not be saved; the log tells why";
  return std::nullopt;
}

}  // namespace kestrel
