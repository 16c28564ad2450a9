#pragma once

#include <QWidget>
#include <functional>
#include <string>

#include "KestrelCore/Presentation/SettingsModel.h"

class QAbstractButton;
class QSlider;

namespace kestrel {

class ElidedLabel;

/// One setting with its line of help and the control for its kind. What a person sets is told at once, but
/// while a slider is dragged not before it is let go.
class SettingRowView final : public QWidget {
 public:
  using Apply = std::function<void(const std::string& key, SettingValue value)>;
  SettingRowView(const SettingRow& row, Apply apply, QWidget* parent = nullptr);

  /// The setting of the moment, of the same key and kind.
  void setRow(const SettingRow& row);
  /// A line below the help, instead of what the system says, until the setting changes.
  void setProblem(const std::string& problem);
  [[nodiscard]] const std::string& key() const { return row_.key; }

 private:
  [[nodiscard]] QWidget* makeControl();
  [[nodiscard]] QWidget* makeSwitch();
  [[nodiscard]] QWidget* makeSlider();
  [[nodiscard]] QWidget* makeButton();
  void showControl();
  void showStatus();
  void onSlid();
  [[nodiscard]] int positionOf(double value) const;
  [[nodiscard]] double valueAt(int position) const;

  SettingRow row_;
  const Apply apply_;
  std::string problem_;
  ElidedLabel* status_;
  QAbstractButton* button_ = nullptr;
  QSlider* slider_ = nullptr;
  ElidedLabel* value_ = nullptr;
};

}  // namespace kestrel
