#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "KestrelCore/Settings/SettingsStore.h"

namespace kestrel {

class AppCoordinator;
class LaunchAtLoginController;

/// `toggle` is on or off; `slider` and `duration` have a value within a range; `action` is a button.
enum class SettingKind { toggle, slider, duration, action };

/// One setting.
struct SettingRow {
  /// The setting's key.
  std::string key;
  std::string title;
  /// One line.
  std::string help;
  SettingKind kind = SettingKind::toggle;
  bool isOn = false;
  // For sliders and durations, the latter in seconds; a stored value beyond the range is shown at its end.
  double value = 0;
  double minimum = 0;
  double maximum = 0;
  double step = 1;
  /// "15 %", "30 s"; for actions what the button says.
  std::string valueText;
  /// What the system says of it; may be empty.
  std::string statusText;
  bool isEnabled = true;

  friend bool operator==(const SettingRow&, const SettingRow&) = default;
};

struct SettingGroup {
  std::string title;
  std::vector<SettingRow> rows;

  friend bool operator==(const SettingGroup&, const SettingGroup&) = default;
};

struct SettingsModel {
  std::vector<SettingGroup> groups;
  /// "Alt+Super+L".
  std::string shortcut;
  /// "Switches Kestrel on and off from anywhere", or that it does not work here.
  std::string shortcutStatus;
  bool shortcutWorks = false;
  /// What Reset asks: what becomes what.
  std::string resetQuestion;

  /// Null when there is none.
  [[nodiscard]] const SettingRow* find(std::string_view key) const;

  friend bool operator==(const SettingsModel&, const SettingsModel&) = default;
};

struct SettingsFacts {
  const SettingsStore* settings = nullptr;
  Date now;
  bool launchesAtLogin = false;
  std::string launchAtLoginStatus;
  bool shortcutWorks = false;
  /// The system's name and version.
  std::string osVersion;
};

SettingsModel settingsModel(const SettingsFacts& facts);

/// The facts of the moment. Main thread.
SettingsFacts settingsFacts(AppCoordinator& coordinator);

/// What a slider or duration says at a value: "15 %", "30 s".
std::string settingValueText(const SettingRow& row, double value);

/// What a row says after its setting could not be kept.
inline constexpr const char* kSettingNotKept = "This could not be changed. The log tells why.";

/// What a control was set to; for an action anything.
using SettingValue = std::variant<bool, double>;

/// Carries out what a person set, or presses the action's button. False when it could not be done; the log
/// tells why. Main thread.
[[nodiscard]] bool applySetting(AppCoordinator& coordinator, std::string_view key, SettingValue value);

}  // namespace kestrel
