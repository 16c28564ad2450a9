#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <cstddef>

#include "screenshots/Scene.h"

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/Badge.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/Gauge.h"
#include "KestrelApp/Widgets/IconView.h"
#include "KestrelApp/Widgets/RingGauge.h"
#include "KestrelApp/Widgets/Sparkline.h"
#include "KestrelApp/Widgets/StateDot.h"
#include "KestrelApp/Widgets/TitledCard.h"
#include "KestrelApp/Widgets/ToggleSwitch.h"

namespace kestrel {
namespace {

ElidedLabel* label(const QString& text) {
  auto* made = new ElidedLabel(Theme::TextStyle::caption);
  made->setText(text);
  made->setTone(Tone::muted);
  return made;
}

void addIcons(QGridLayout& grid) {
  constexpr int kColumns = 9;
  for (int i = 0; i <= static_cast<int>(Icon::chip); ++i) {
    auto* icon = new IconView(static_cast<Icon>(i), Theme::kSpaceHuge);
    icon->setTone(Tone::normal);
    grid.addWidget(icon, i / kColumns, i % kColumns);
  }
  for (std::size_t i = 0; i < RawValues<AgentType>::table.size(); ++i) {
    auto* icon = new IconView(Icon::chip, Theme::kSpaceHuge);
    icon->setAgent(static_cast<AgentType>(i));
    grid.addWidget(icon, 4, static_cast<int>(i));
    auto* dot = new StateDot;
    dot->setState(static_cast<AgentState>(i % RawValues<AgentState>::table.size()));
    if (i < RawValues<AgentState>::table.size()) grid.addWidget(dot, 5, static_cast<int>(i));
  }
}

void addGauges(QGridLayout& grid) {
  constexpr Tone kTones[] = {Tone::accent, Tone::good, Tone::warn, Tone::bad};
  constexpr double kValues[] = {0.78, 1, 0.12, 0.01};
  for (int i = 0; i < 4; ++i) {
    auto* gauge = new Gauge;
    gauge->setValue(kValues[i], kTones[i]);
    grid.addWidget(gauge, 0, i);
    auto* ring = new RingGauge;
    ring->setValue(kValues[i], QStringLiteral("%1 %").arg(kValues[i] * 100), kTones[i]);
    grid.addWidget(ring, 1, i);
    auto* badge = new Badge;
    badge->setText(QStringList{"Known", "Hook active", "Low", "Critically Low"}[i], kTones[i]);
    grid.addWidget(badge, 2, i);
  }
  auto* unknown = new Gauge;
  unknown->setUnknown(QStringLiteral("Quota unavailable"));
  grid.addWidget(unknown, 3, 0);
  grid.addWidget(new RingGauge, 3, 1);
  auto* hours = new Sparkline;
  std::vector<double> values;
  for (int i = 0; i < 24; ++i) values.push_back(i < 6 ? 0 : (i * 7) % 11);
  hours->setValues(values, 20);
  grid.addWidget(hours, 3, 2);
}

void addControls(QGridLayout& grid) {
  auto* primary = new QPushButton("Primary");
  primary->setProperty("primary", true);
  auto* disabled = new QPushButton("Disabled");
  disabled->setEnabled(false);
  auto* quiet = new QPushButton("Quiet");
  quiet->setProperty("quiet", true);
  auto* on = new ToggleSwitch("on");
  on->setChecked(true);
  auto* focused = new QPushButton("Focus");
  focused->setFocus();
  int column = 0;
  for (QWidget* widget : std::initializer_list<QWidget*>{new QPushButton("Button"), primary, disabled, quiet,
                                                         focused, on, new ToggleSwitch("off")})
    grid.addWidget(widget, 0, column++);
  auto* checked = new QCheckBox("Checked");
  checked->setChecked(true);
  auto* combo = new QComboBox;
  combo->addItems({"Combo box", "b"});
  auto* slider = new QSlider(Qt::Horizontal);
  slider->setValue(40);
  column = 0;
  for (QWidget* widget : std::initializer_list<QWidget*>{new QCheckBox("Check"), checked, combo, slider,
                                                         new QLineEdit("Text"), label("Caption")})
    grid.addWidget(widget, 1, column++);
}

std::unique_ptr<QWidget> kitSheet() {
  auto sheet = std::make_unique<QWidget>();
  auto* lines = new QVBoxLayout(sheet.get());
  for (auto* add : {addIcons, addGauges, addControls}) {
    auto* card = new TitledCard({});
    auto* grid = new QGridLayout;
    card->lines().addLayout(grid);
    grid->setSpacing(Theme::kSpaceMedium);
    add(*grid);
    lines->addWidget(card);
  }
  return sheet;
}

}  // namespace

Scenes kitScenes() {
  return {{"kit", [] { return Scenery{nullptr, kitSheet()}; }}};
}

}  // namespace kestrel
