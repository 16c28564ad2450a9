#include "KestrelApp/Sections/PowerSection.h"

#include <QBoxLayout>

#include "KestrelApp/Sections/AssertionRowView.h"
#include "KestrelApp/Sections/PowerFactView.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/BatteryBarView.h"
#include "KestrelApp/Widgets/CardGridLayout.h"
#include "KestrelApp/Widgets/Rows.h"
#include "KestrelApp/Widgets/SectionScrollArea.h"
#include "KestrelApp/Widgets/ThermalLadderView.h"
#include "KestrelApp/Widgets/TitledCard.h"
#include "KestrelCore/Presentation/PowerModel.h"

namespace kestrel {
namespace {

constexpr int kCardWidth = 17 * Theme::kSpaceLarge;

}  // namespace

PowerSection::PowerSection(ViewContext& context, QWidget* parent)
    : LiveView(context, parent),
      settings_(context, [this](const std::string&) { refreshAtOnce(); }),
      hold_(new PowerFactView(Icon::power)),
      battery_(new PowerFactView(Icon::battery)),
      bar_(new BatteryBarView),
      lowPower_(new PowerFactView(Icon::leaf)),
      thermal_(new PowerFactView(Icon::thermometer)),
      ladder_(new ThermalLadderView),
      lid_(new PowerFactView(Icon::laptop)),
      helper_(new PowerFactView(Icon::wrench)) {
  auto* machine = new CardGridLayout(kCardWidth, Theme::kSpaceMedium);
  machine->addWidget(makeHeatCard());
  machine->addWidget(makeLidCard());
  auto* scroll = new SectionScrollArea(SectionScrollArea::kWidestOfRows);
  scroll->lines().addWidget(makeHoldCard());
  scroll->lines().addWidget(makeBatteryCard());
  scroll->lines().addLayout(machine);
  scroll->lines().addWidget(makeSettingsCard());
  scroll->lines().addStretch(1);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(scroll);
}

QWidget* PowerSection::makeHoldCard() {
  auto* card = new TitledCard(QStringLiteral("Held right now"));
  assertionLines_ = new QVBoxLayout;
  assertionLines_->setSpacing(Theme::kSpaceSmall);
  card->lines().addWidget(hold_);
  card->lines().addLayout(assertionLines_);
  return card;
}

QWidget* PowerSection::makeBatteryCard() {
  auto* card = new TitledCard(QStringLiteral("Battery"));
  bar_->setObjectName(QStringLiteral("batteryBar"));
  card->lines().addWidget(bar_);
  card->lines().addWidget(battery_);
  card->lines().addWidget(lowPower_);
  return card;
}

QWidget* PowerSection::makeHeatCard() {
  auto* card = new TitledCard(QStringLiteral("Heat"));
  ladder_->setAccessibleName(QStringLiteral("Heat"));
  card->lines().addWidget(ladder_);
  card->lines().addWidget(thermal_);
  return card;
}

QWidget* PowerSection::makeLidCard() {
  auto* card = new TitledCard(QStringLiteral("Lid"));
  card->lines().setSpacing(Theme::kSpaceMedium);
  card->lines().addWidget(lid_);
  card->lines().addWidget(helper_);
  return card;
}

QWidget* PowerSection::makeSettingsCard() {
  auto* card = new TitledCard(QStringLiteral("Settings"));
  const SettingsModel settings = settingsModel(settingsFacts(context().coordinator));
  for (const auto& key : powerModel(powerFacts(context().coordinator)).settingKeys) {
    if (const SettingRow* row = settings.find(key)) settings_.add(*row, card->lines());
  }
  return card;
}

void PowerSection::refresh() {
  AppCoordinator& coordinator = context().coordinator;
  const PowerModel model = powerModel(powerFacts(coordinator));
  hold_->setFact(model.hold);
  showAssertions(model);
  showBattery(model.battery);
  lowPower_->setVisible(model.lowPower.has_value());
  if (model.lowPower) lowPower_->setFact({*model.lowPower, "", Tone::good});
  ladder_->setVisible(!model.thermalLadder.empty());
  ladder_->setSteps(model.thermalLadder);
  thermal_->setFact(model.thermal);
  lid_->setFact(model.lid);
  helper_->setFact(model.helper);
  settings_.setModel(settingsModel(settingsFacts(coordinator)));
}

void PowerSection::showBattery(const BatteryBar& battery) {
  bar_->setVisible(battery.level.has_value());
  bar_->setBar(battery);
  battery_->setFact({battery.text, battery.level ? battery.explanation : "", battery.tone});
}

void PowerSection::showAssertions(const PowerModel& model) {
  keepRows(assertions_, model.assertions.size(), *assertionLines_, [] { return new AssertionRowView; });
  for (std::size_t i = 0; i < assertions_.size(); ++i) assertions_[i]->setRow(model.assertions[i]);
}

}  // namespace kestrel
