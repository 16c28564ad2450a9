#include "KestrelCore/Presentation/SettingsModel.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <utility>

#include "KestrelCore/AppCoordinator.h"
#include "KestrelCore/Presentation/DurationText.h"

namespace kestrel {
namespace {

constexpr double kLongestDelay = 600;

SettingRow toggle(std::string key, std::string title, std::string help, bool isOn) {
  SettingRow row;
  row.key = std::move(key);
  row.title = std::move(title);
  row.help = std::move(help);
  row.isOn = isOn;
  return row;
}

SettingRow action(std::string key, std::string title, std::string help, std::string button) {
  SettingRow row = toggle(std::move(key), std::move(title), std::move(help), false);
  row.kind = SettingKind::action;
  row.valueText = std::move(button);
  return row;
}

SettingRow batteryFloor(const SettingsStore& settings) {
  SettingRow row = toggle("batteryFloorPercent", "Stop below",
                          "On battery, protection stops at this level so that your work is not lost.", false);
  const auto percent = settings.policyConfig().batteryFloorPercent;
  row.kind = SettingKind::slider;
  row.value = static_cast<double>(percent);
  row.minimum = static_cast<double>(PolicyConfiguration::kMinimumBatteryFloor);
  row.maximum = static_cast<double>(PolicyConfiguration::kMaximumBatteryFloor);
  row.valueText = settingValueText(row, row.value);
  return row;
}

SettingRow releaseDelay(const SettingsStore& settings) {
  SettingRow row = toggle("releaseDelaySeconds", "Let go after",
                          "How long to stay awake after the last agent has stopped.", false);
  const double seconds = settings.policyConfig().releaseDebounceSeconds;
  row.kind = SettingKind::duration;
  row.value = std::min(seconds, kLongestDelay);
  row.maximum = kLongestDelay;
  row.step = 5;
  row.valueText = settingValueText(row, seconds);
  return row;
}

SettingRow pauseRow(const SettingsFacts& facts) {
  const auto until = facts.settings->pauseUntil();
  const bool isPaused = until && *until > facts.now;
  SettingRow row = action("pauseUntil", "Pause", "Lets the computer sleep for half an hour, whoever works.",
                          isPaused ? "Resume" : "Pause for 30 Minutes");
  row.isOn = isPaused;
  row.statusText = isPaused ? "Paused, " + durationText(*until - facts.now) + " left" : "Not paused";
  return row;
}

SettingGroup protection(const SettingsFacts& facts) {
  const SettingsStore& settings = *facts.settings;
  return {"Protection",
          {toggle("masterEnabled", "Kestrel is on", "Keeps this computer awake while agents work.",
                  settings.masterEnabled()),
           toggle("manualHoldEnabled", "Keep awake", "Also while no agent works, until you switch it off.",
                  settings.manualHoldEnabled()),
           toggle("preventDisplaySleep", "Keep the display on",
                  "The screen stays on, too, while agents work.", settings.preventDisplaySleep()),
           toggle("deepLidProtectionEnabled", "Also with the lid closed",
                  "Asks the helper to keep the computer awake when you close the lid.",
                  settings.deepLidProtectionEnabled()),
           releaseDelay(settings), pauseRow(facts)}};
}

SettingGroup battery(const SettingsFacts& facts) {
  return {"Battery",
          {toggle("onlyOnAC", "Only on mains power", "On battery, the computer may sleep whoever works.",
                  facts.settings->onlyOnAC()),
           batteryFloor(*facts.settings)}};
}

SettingGroup notifications(const SettingsFacts& facts) {
  SettingRow sound = toggle("soundEnabled", "Play a sound", "A chime comes with each notification.",
                            facts.settings->soundEnabled());
  sound.isEnabled = facts.settings->notificationsEnabled();
  return {"Notifications",
          {toggle("notificationsEnabled", "Notify me", "When protection begins, ends or is cut off.",
                  facts.settings->notificationsEnabled()),
           std::move(sound)}};
}

SettingGroup general(const SettingsFacts& facts) {
  // The system's own state is the true one.
  SettingRow login =
      toggle("launchAtLogin", "Open at login", "Kestrel starts when you log in.", facts.launchesAtLogin);
  login.statusText = facts.launchAtLoginStatus;
  return {
      "General",
      {std::move(login), action("hasCompletedOnboarding", "Introduction",
                                "What Kestrel does, how agents are set up, and a trial.", "Show again…")}};
}

struct Switch {
  std::string_view key;
  bool (SettingsStore::*set)(bool);
};
constexpr Switch kSwitches[] = {{"masterEnabled", &SettingsStore::setMasterEnabled},
                                {"manualHoldEnabled", &SettingsStore::setManualHoldEnabled},
                                {"onlyOnAC", &SettingsStore::setOnlyOnAC},
                                {"deepLidProtectionEnabled", &SettingsStore::setDeepLidProtectionEnabled},
                                {"preventDisplaySleep", &SettingsStore::setPreventDisplaySleep},
                                {"notificationsEnabled", &SettingsStore::setNotificationsEnabled},
                                {"soundEnabled", &SettingsStore::setSoundEnabled}};

bool applyLaunchAtLogin(AppCoordinator& coordinator, bool isOn) {
  const bool isDone = coordinator.launchAtLogin().setEnabled(isOn);
  return coordinator.settings().setLaunchAtLogin(coordinator.launchAtLogin().isEnabled()) && isDone;
}

bool applyAction(AppCoordinator& coordinator, std::string_view key) {
  SettingsStore& settings = coordinator.settings();
  if (key == "hasCompletedOnboarding") return settings.setHasCompletedOnboarding(false);
  if (key != "pauseUntil") return false;
  constexpr double kPauseSeconds = 1800;
  const auto until = settings.pauseUntil();
  return until && *until > coordinator.clock().now() ? settings.resume() : settings.pause(kPauseSeconds);
}

bool apply(AppCoordinator& coordinator, std::string_view key, SettingValue value) {
  SettingsStore& settings = coordinator.settings();
  if (const double* number = std::get_if<double>(&value); number != nullptr && std::isfinite(*number)) {
    if (key == "releaseDelaySeconds") {
      return settings.setReleaseDelaySeconds(std::clamp(*number, 0.0, kLongestDelay));
    }
    if (key == "batteryFloorPercent") {
      return settings.setBatteryFloorPercent(std::llround(std::clamp(*number, 0.0, 100.0)));
    }
  }
  if (const bool* isOn = std::get_if<bool>(&value); isOn != nullptr) {
    if (key == "launchAtLogin") return applyLaunchAtLogin(coordinator, *isOn);
    const auto* found = std::ranges::find(kSwitches, key, &Switch::key);
    if (found != std::end(kSwitches)) return (settings.*found->set)(*isOn);
  }
  return applyAction(coordinator, key);
}

}  // namespace

std::string settingValueText(const SettingRow& row, double value) {
  if (row.kind == SettingKind::duration) return durationText(value);
  return fmt::format("{} %", std::lround(value));
}

const SettingRow* SettingsModel::find(std::string_view key) const {
  for (const auto& group : groups) {
    const auto row = std::ranges::find(group.rows, key, &SettingRow::key);
    if (row != group.rows.end()) return &*row;
  }
  return nullptr;
}

SettingsModel settingsModel(const SettingsFacts& facts) {
  SettingsModel model;
  model.groups = {protection(facts), battery(facts), notifications(facts), general(facts)};
  model.shortcut = facts.osVersion.starts_with("macOS") ? "Option+Command+L" : "Alt+Super+L";
  model.shortcutWorks = facts.shortcutWorks;
  model.shortcutStatus = facts.shortcutWorks ? "Switches Kestrel on and off from anywhere"
                                             : "Does not work here: the system lets no program hear it";
  model.resetQuestion =
      "Set everything back to its default?\nEvery setting here is lost, but for Open at login. Recorded "
      "usage "
      "stays.";
  return model;
}

SettingsFacts settingsFacts(AppCoordinator& coordinator) {
  return {.settings = &coordinator.settings(),
          .now = coordinator.clock().now(),
          .launchesAtLogin = coordinator.launchAtLogin().isEnabled(),
          .launchAtLoginStatus = coordinator.launchAtLogin().statusDescription(),
          .shortcutWorks = coordinator.hearsShortcut(),
          .osVersion = coordinator.platform().osVersion};
}

bool applySetting(AppCoordinator& coordinator, std::string_view key, SettingValue value) {
  const bool isDone = apply(coordinator, key, value);
  coordinator.evaluate();
  return isDone;
}

}  // namespace kestrel
