#include "KestrelApp/Sections/SettingsSection.h"

#include <QBoxLayout>

#include "KestrelApp/DiagnosticsSheet.h"
#include "KestrelApp/Theme.h"
#include "KestrelApp/ViewContext.h"
#include "KestrelApp/Widgets/AskFirst.h"
#include "KestrelApp/Widgets/Badge.h"
#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelApp/Widgets/SectionScrollArea.h"
#include "KestrelApp/Widgets/Separator.h"
#include "KestrelApp/Widgets/TitledCard.h"
#include "KestrelCore/AppCoordinator.h"

namespace kestrel {
namespace {

/// A row with a button that is no setting.
SettingRow buttonRow(const char* key, const char* title, const char* help, const char* button) {
  SettingRow row;
  row.key = key;
  row.title = title;
  row.help = help;
  row.kind = SettingKind::action;
  row.valueText = button;
  return row;
}

}  // namespace

SettingsSection::SettingsSection(ViewContext& context, QWidget* parent)
    : LiveView(context, parent),
      settings_(context, [this](const std::string& key) { onApplied(key); }),
      shortcut_(new Badge),
      shortcutStatus_(new ElidedLabel(Theme::TextStyle::body)) {
  auto* scroll = new SectionScrollArea(SectionScrollArea::kWidestOfRows);
  addGroups(scroll->lines());
  scroll->lines().addWidget(makeShortcutCard());
  scroll->lines().addWidget(makeHelpCard());
  scroll->lines().addStretch(1);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(scroll);
}

void SettingsSection::addGroups(QVBoxLayout& lines) {
  for (const SettingGroup& group : settingsModel(settingsFacts(context().coordinator)).groups) {
    auto* card = new TitledCard(displayText(group.title));
    for (const SettingRow& row : group.rows) settings_.add(row, card->lines());
    lines.addWidget(card);
  }
}

QWidget* SettingsSection::makeShortcutCard() {
  auto* card = new TitledCard(QStringLiteral("Shortcut"));
  shortcutStatus_->setMaximumLines(2);
  auto* row = new QHBoxLayout;
  row->setContentsMargins(0, Theme::kSpaceTiny, 0, Theme::kSpaceTiny);
  row->setSpacing(Theme::kSpaceLarge);
  row->addWidget(shortcutStatus_, 1);
  row->addWidget(shortcut_);
  row->addSpacing(Theme::kSpaceTiny);
  card->lines().addLayout(row);
  return card;
}

QWidget* SettingsSection::makeHelpCard() {
  auto* card = new TitledCard(QStringLiteral("Help"));
  card->lines().addWidget(new SettingRowView(
      buttonRow("diagnostics", "Diagnostics",
                "What Kestrel knows of this computer and itself, for those who help you.", "Show…"),
      [this](const std::string&, SettingValue) { showDiagnostics(); }));
  card->lines().addWidget(new Separator);
  card->lines().addWidget(new SettingRowView(
      buttonRow("reset", "Defaults", "Sets everything back, after asking you.", "Reset to defaults…"),
      [this](const std::string&, SettingValue) { reset(); }));
  return card;
}

void SettingsSection::refresh() {
  const SettingsModel model = settingsModel(settingsFacts(context().coordinator));
  settings_.setModel(model);
  shortcut_->setText(displayText(model.shortcut), model.shortcutWorks ? Tone::accent : Tone::muted);
  shortcutStatus_->setText(displayText(model.shortcutStatus));
  shortcutStatus_->setTone(model.shortcutWorks ? Tone::normal : Tone::muted);
}

void SettingsSection::onApplied(const std::string& key) {
  refreshAtOnce();
  if (key == "hasCompletedOnboarding" && context().showIntroduction) context().showIntroduction();
}

void SettingsSection::showDiagnostics() {
  auto* sheet = new DiagnosticsSheet(context(), this);
  sheet->setAttribute(Qt::WA_DeleteOnClose);
  sheet->open();
}

void SettingsSection::reset() {
  AppCoordinator& coordinator = context().coordinator;
  askFirst(*this, settingsModel(settingsFacts(coordinator)).resetQuestion, QStringLiteral("Reset"),
           [this, &coordinator] {
             // What could not be kept was logged, and shows.
             (void)coordinator.settings().resetToDefaults();
             coordinator.evaluate();
             refreshAtOnce();
           });
}

}  // namespace kestrel
