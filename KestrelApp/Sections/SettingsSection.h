#pragma once

#include "KestrelApp/LiveView.h"
#include "KestrelApp/Sections/SettingRows.h"

class QVBoxLayout;

namespace kestrel {

class Badge;
class ElidedLabel;

/// Every setting, what the shortcut does, what helps those who help, and the way back to the defaults.
class SettingsSection final : public LiveView {
 public:
  explicit SettingsSection(ViewContext& context, QWidget* parent = nullptr);

 protected:
  void refresh() override;

 private:
  void addGroups(QVBoxLayout& lines);
  [[nodiscard]] QWidget* makeShortcutCard();
  [[nodiscard]] QWidget* makeHelpCard();
  void onApplied(const std::string& key);
  void showDiagnostics();
  void reset();

  SettingRows settings_;
  Badge* shortcut_;
  ElidedLabel* shortcutStatus_;
};

}  // namespace kestrel
