#pragma once

#include <vector>

#include "KestrelApp/LiveView.h"
#include "KestrelApp/Sections/SettingRows.h"

class QVBoxLayout;

namespace kestrel {

class AssertionRowView;
class BatteryBarView;
class PowerFactView;
class ThermalLadderView;
struct BatteryBar;
struct PowerModel;

/// What is held right now, the state of the machine that decides on it, and the settings that go with that.
class PowerSection final : public LiveView {
 public:
  explicit PowerSection(ViewContext& context, QWidget* parent = nullptr);

 protected:
  void refresh() override;

 private:
  [[nodiscard]] QWidget* makeHoldCard();
  [[nodiscard]] QWidget* makeBatteryCard();
  [[nodiscard]] QWidget* makeHeatCard();
  [[nodiscard]] QWidget* makeLidCard();
  [[nodiscard]] QWidget* makeSettingsCard();
  void showBattery(const BatteryBar& battery);
  void showAssertions(const PowerModel& model);

  SettingRows settings_;
  PowerFactView* hold_;
  QVBoxLayout* assertionLines_ = nullptr;
  std::vector<AssertionRowView*> assertions_;
  PowerFactView* battery_;
  BatteryBarView* bar_;
  PowerFactView* lowPower_;
  PowerFactView* thermal_;
  ThermalLadderView* ladder_;
  PowerFactView* lid_;
  PowerFactView* helper_;
};

}  // namespace kestrel
