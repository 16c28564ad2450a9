#include "KestrelApp/Sections/SettingRowView.h"

#include <QBoxLayout>
#include <QFontMetrics>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>
#include <cmath>
#include <utility>

#include "KestrelApp/Theme.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/ToggleSwitch.h"

namespace kestrel {
namespace {

constexpr int kSliderWidth = 12 * Theme::kSpaceLarge;
/// As much as a switch leaves for its focus ring.
constexpr int kControlMargin = Theme::kSpaceTiny;
constexpr int kValueWidth = 5 * Theme::kSpaceLarge;
constexpr int kHelpLines = 2;

ElidedLabel* makeLabel(const std::string& text, Theme::TextStyle style, Tone tone) {
  auto* label = new ElidedLabel(style);
  label->setText(displayText(text));
  label->setTone(tone);
  label->setMaximumLines(kHelpLines);
  return label;
}

}  // namespace

SettingRowView::SettingRowView(const SettingRow& row, Apply apply, QWidget* parent)
    : QWidget(parent),
      row_(row),
      apply_(std::move(apply)),
      status_(makeLabel("", Theme::TextStyle::caption, Tone::muted)) {
  setObjectName(displayText(row.key));
  auto* words = new QVBoxLayout;
  words->setSpacing(Theme::kSpaceTiny / 2);
  words->addWidget(makeLabel(row.title, Theme::TextStyle::body, Tone::normal));
  words->addWidget(makeLabel(row.help, Theme::TextStyle::caption, Tone::muted));
  words->addWidget(status_);
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(0, Theme::kSpaceTiny, 0, Theme::kSpaceTiny);
  columns->setSpacing(Theme::kSpaceLarge);
  columns->addLayout(words, 1);
  columns->addWidget(makeControl(), 0, Qt::AlignVCenter);
  if (row.kind != SettingKind::toggle) columns->addSpacing(kControlMargin);
  showControl();
  showStatus();
}

QWidget* SettingRowView::makeControl() {
  switch (row_.kind) {
    case SettingKind::toggle:
      return makeSwitch();
    case SettingKind::slider:
    case SettingKind::duration:
      return makeSlider();
    case SettingKind::action:
      break;
  }
  return makeButton();
}

QWidget* SettingRowView::makeSwitch() {
  button_ = new ToggleSwitch(displayText(row_.title));
  button_->setAccessibleDescription(displayText(row_.help));
  QObject::connect(button_, &QAbstractButton::clicked, this, [this](bool isOn) { apply_(row_.key, isOn); });
  return button_;
}

QWidget* SettingRowView::makeButton() {
  auto* button = new QPushButton;
  // Enter works as the space bar does, also outside dialogs.
  button->setAutoDefault(true);
  button->setAccessibleDescription(displayText(row_.help));
  QObject::connect(button, &QPushButton::clicked, this, [this] { apply_(row_.key, true); });
  button_ = button;
  return button;
}

QWidget* SettingRowView::makeSlider() {
  slider_ = new QSlider(Qt::Horizontal);
  slider_->setFixedWidth(kSliderWidth);
  slider_->setAccessibleName(displayText(row_.title));
  slider_->setRange(0, positionOf(row_.maximum));
  slider_->setPageStep(std::max(positionOf(row_.maximum) / 10, 1));
  value_ = new ElidedLabel(Theme::TextStyle::body);
  value_->setTrailing(true);
  value_->setFixedWidth(kValueWidth);
  QObject::connect(slider_, &QSlider::valueChanged, this, [this] { onSlid(); });
  QObject::connect(slider_, &QSlider::sliderReleased, this, [this] { onSlid(); });
  auto* control = new QWidget;
  auto* columns = new QHBoxLayout(control);
  columns->setContentsMargins(0, 0, 0, 0);
  columns->setSpacing(Theme::kSpaceSmall);
  columns->addWidget(slider_);
  columns->addWidget(value_);
  return control;
}

int SettingRowView::positionOf(double value) const {
  return static_cast<int>(std::lround((value - row_.minimum) / row_.step));
}

double SettingRowView::valueAt(int position) const {
  return row_.minimum + position * row_.step;
}

void SettingRowView::onSlid() {
  const double value = valueAt(slider_->value());
  value_->setText(displayText(settingValueText(row_, value)));
  if (!slider_->isSliderDown()) apply_(row_.key, value);
}

void SettingRowView::setRow(const SettingRow& row) {
  if (row != row_) problem_.clear();
  row_ = row;
  showControl();
  showStatus();
}

void SettingRowView::setProblem(const std::string& problem) {
  problem_ = problem;
  showStatus();
}

void SettingRowView::showControl() {
  setEnabled(row_.isEnabled);
  if (slider_ != nullptr) {
    if (slider_->isSliderDown()) return;
    const QSignalBlocker quiet(slider_);
    slider_->setValue(positionOf(row_.value));
    slider_->setAccessibleDescription(displayText(row_.valueText));
    value_->setText(displayText(row_.valueText));
  } else if (row_.kind == SettingKind::toggle) {
    button_->setChecked(row_.isOn);
  } else {
    button_->setText(displayText(row_.valueText));
  }
}

void SettingRowView::showStatus() {
  const bool isProblem = !problem_.empty();
  const std::string& text = isProblem ? problem_ : row_.statusText;
  status_->setText(displayText(text));
  status_->setTone(isProblem ? Tone::bad : Tone::normal);
  status_->setVisible(!text.empty());
}

}  // namespace kestrel
