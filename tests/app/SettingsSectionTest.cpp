#include <QClipboard>
#include <QFileDialog>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSlider>
#include <fstream>

#include "tests/app/WindowTest.h"

#include "KestrelApp/AgentSetupSheet.h"
#include "KestrelApp/DiagnosticsSheet.h"
#include "KestrelApp/OnboardingView.h"
#include "KestrelApp/Sections/SettingsSection.h"
#include "KestrelApp/SettingsView.h"
#include "KestrelApp/Widgets/ElidedLabel.h"
#include "KestrelCore/Control/SettingsCatalog.h"
#include "KestrelCore/Support/Json.h"

namespace kestrel {
namespace {

class SettingsSectionTest : public WindowTest {
 protected:
  SettingsSectionTest() {
    views_.context().showIntroduction = [this] { ++introductions_; };
    show(section_);
  }
  SettingRowView& row(const char* key) { return *childOf<SettingRowView>(section_, key); }
  QAbstractButton& button(const char* key) { return *row(key).findChild<QAbstractButton*>(); }
  QSlider& slider(const char* key) { return *row(key).findChild<QSlider*>(); }
  void click(const char* key) { QTest::mouseClick(&button(key), Qt::LeftButton); }
  bool says(const char* key, const char* words) {
    const auto labels = visible<ElidedLabel>(row(key));
    return std::ranges::any_of(labels, [&](const auto* label) { return label->text().contains(words); });
  }
  template <typename Dialog>
  Dialog& dialog() {
    auto* const found = dynamic_cast<Dialog*>(QApplication::activeModalWidget());
    EXPECT_NE(found, nullptr);
    return *found;
  }
  void press(QWidget& in, const QString& word) {
    for (auto* choice : visible<QPushButton>(in)) {
      if (choice->text().remove(u'&') == word) return QTest::mouseClick(choice, Qt::LeftButton);
    }
    FAIL() << word.toStdString();
  }

  int introductions_ = 0;
  SettingsSection section_{views_.context()};
};

TEST_F(SettingsSectionTest, EachControlChangesItsSettingAndNothingElse) {
  const std::map<std::string, std::function<void(const char*)>> acts{
      {"click", [&](const char* key) { click(key); }},
      {"space", [&](const char* key) { QTest::keyClick(&button(key), Qt::Key_Space); }},
      {"right", [&](const char* key) { QTest::keyClick(&slider(key), Qt::Key_Right); }},
      {"end", [&](const char* key) { QTest::keyClick(&slider(key), Qt::Key_End); }}};
  const std::vector<std::tuple<const char*, const char*, Json, const char*>> steps{
      {"masterEnabled", "click", false, ""},         {"manualHoldEnabled", "space", true, ""},
      {"preventDisplaySleep", "click", true, ""},    {"deepLidProtectionEnabled", "space", false, ""},
      {"releaseDelaySeconds", "end", 600, "10 min"}, {"onlyOnAC", "click", true, ""},
      {"batteryFloorPercent", "right", 16, "16 %"},  {"soundEnabled", "click", false, ""},
      {"notificationsEnabled", "click", false, ""},  {"launchAtLogin", "space", true, ""},
      {"hasCompletedOnboarding", "space", false, ""}};
  stage_.settings().setHasCompletedOnboarding(true);
  for (const auto& [key, act, expected, words] : steps) {
    Json wanted = settingsReport(stage_.settings());
    wanted[key] = expected;
    acts.at(act)(key);
    EXPECT_EQ(settingsReport(stage_.settings()), wanted) << key;
    EXPECT_TRUE(says(key, words)) << key;
  }
  EXPECT_EQ(introductions_, 1);
  EXPECT_FALSE(button("soundEnabled").isEnabled()) << "no notifications, no sound";
  EXPECT_EQ(stage_.machine().loginItem->calls(), std::vector<std::string>{"register"});
  click("pauseUntil");
  EXPECT_EQ(stage_.settings().pauseUntil(), stage_.clock().now() + 1800);
  EXPECT_EQ(button("pauseUntil").text(), "Resume");
}

TEST_F(SettingsSectionTest, ADraggedSliderIsKeptWhenItIsLetGo) {
  QSlider& floor = slider("batteryFloorPercent");
  floor.setSliderDown(true);
  floor.setSliderPosition(20);
  evaluate();
  EXPECT_EQ(floor.value(), 20) << "stays under the hand";
  EXPECT_TRUE(says("batteryFloorPercent", "25 %"));
  EXPECT_EQ(stage_.settings().batteryFloorPercent(), 15);
  floor.setSliderDown(false);
  EXPECT_EQ(stage_.settings().batteryFloorPercent(), 25);
}

TEST_F(SettingsSectionTest, WhatIsChangedElsewhereShowsAndWhatCannotBeKeptIsSaid) {
  auto& defaults = *stage_.machine().userDefaults;
  defaults.changeFromOutside("onlyOnAC", true);
  defaults.fireOutsideChange();
  evaluate();
  EXPECT_TRUE(button("onlyOnAC").isChecked());
  defaults.failWrites(true);
  click("onlyOnAC");
  EXPECT_TRUE(button("onlyOnAC").isChecked()) << "as it is";
  EXPECT_TRUE(says("onlyOnAC", kSettingNotKept));
  defaults.failWrites(false);
  click("onlyOnAC");
  EXPECT_FALSE(says("onlyOnAC", kSettingNotKept));
}

TEST_F(SettingsSectionTest, DefaultsComeBackOnlyAfterAsking) {
  stage_.settings().setOnlyOnAC(true);
  click("reset");
  EXPECT_FALSE(dialog<QMessageBox>().informativeText().isEmpty()) << "what is lost";
  press(dialog<QMessageBox>(), "Cancel");
  click("reset");
  QTest::keyClick(&dialog<QMessageBox>(), Qt::Key_Return);
  EXPECT_TRUE(stage_.settings().onlyOnAC()) << "the safe answer stands ready";
  click("reset");
  press(dialog<QMessageBox>(), "Reset");
  EXPECT_FALSE(stage_.settings().onlyOnAC());
}

TEST_F(SettingsSectionTest, DiagnosticsAreGatheredAfterTheSheetShowsAndCanBeTakenAway) {
  click("diagnostics");
  auto& sheet = dialog<DiagnosticsSheet>();
  const auto text = [&] { return sheet.findChild<QPlainTextEdit*>()->toPlainText(); };
  EXPECT_TRUE(text().isEmpty());
  stage_.executor().advance(1);
  EXPECT_TRUE(Json::parse(text().toStdString()).is_object());
  press(sheet, "Copy");
  EXPECT_EQ(QApplication::clipboard()->text(), text());
  press(sheet, "Save…");
  auto* const chooser = sheet.findChild<QFileDialog*>();
  const auto chosen = stage_.app().directories().home / "d.json";
  chooser->setDirectory(QString::fromStdString(chosen.parent_path()));
  chooser->selectFile("d.json");
  QTest::keyClick(chooser, Qt::Key_Return);
  const auto* result = visible<ElidedLabel>(sheet).at(0);
  // Another thread writes.
  EXPECT_TRUE(QTest::qWaitFor([&] { return stage_.executor().runPending(), result->text() != "Copied"; }));
  std::ifstream file(chosen);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), text().toStdString());
}

// The windows beside the main one.
TEST_F(SettingsSectionTest, TheKeyboardReachesEverythingInEachWindow) {
  playInstalledAgents(views_);
  section_.hide();
  // Among several ways the arrow keys choose.
  const auto isReachedOtherwise = [](const QAbstractButton& button) { return button.group() != nullptr; };
  SettingsView settings(views_.context());
  DiagnosticsSheet diagnostics(views_.context());
  AgentSetupSheet setup(views_.context(), AgentType::claude);
  OnboardingView welcome(views_.context());
  for (QWidget* window : std::initializer_list<QWidget*>{&settings, &diagnostics, &setup, &welcome}) {
    show(*window);
    evaluate();
    expectKeyboardReachesAll(*window, isReachedOtherwise);
    for (int page = 2; page <= 4 && window == &welcome; ++page) {
      QTest::keyClick(window, Qt::Key_Return);
      layOut();
      expectKeyboardReachesAll(*window, isReachedOtherwise);
    }
    window->hide();
  }
}

}  // namespace
}  // namespace kestrel
