#include <QColor>
#include <QString>

#include "KestrelApp/Theme.h"

namespace kestrel {
namespace {

constexpr const char* kTemplate = R"(
QPushButton, QToolButton, QLineEdit {
  background: @raised; color: @text; border: 1px solid @hairline; border-radius: 8px;
  padding: 0 10px; min-height: 26px; outline: none;
}
QToolButton { padding: 0 5px; }
QPushButton:hover, QToolButton:hover { border-color: @muted; }
QPushButton:pressed, QToolButton:pressed { background: @hairline; }
QPushButton:focus, QToolButton:focus, QLineEdit:focus {
  border: 2px solid @accent; padding: 0 9px; min-height: 24px;
}
QToolButton:focus { padding: 0 4px; }
QPushButton:disabled, QToolButton:disabled { color: @muted; background: transparent; }
QPushButton:checked, QPushButton[primary="true"] {
  background: @accentArea; color: @onAccent; border-color: @accentArea;
}
QPushButton:checked:hover, QPushButton[primary="true"]:hover { border-color: @text; }
QPushButton:checked:focus, QPushButton[primary="true"]:focus { border: 2px solid @text; }
QPushButton[primary="true"]:disabled { background: @raised; color: @muted; border-color: @hairline; }
QPushButton[quiet="true"], QToolButton[quiet="true"] { background: transparent; border-color: transparent; }
QPushButton[quiet="true"] { padding: 0 6px; }
QPushButton[quiet="true"]:focus { padding: 0 5px; }
QPushButton[quiet="true"]:hover, QToolButton[quiet="true"]:hover { background: @raised; }
QPushButton[quiet="true"]:focus, QToolButton[quiet="true"]:focus { border-color: @accent; }
QPushButton::menu-indicator { image: none; width: 0; }
QPushButton[menu="true"] { padding-right: 22px; }
QPushButton[menu="true"]:focus { padding-right: 21px; }
QLineEdit { background: @surface; padding: 0 7px; }
QComboBox QAbstractItemView { background: @raised; border: 1px solid @hairline; selection-background-color: @accentArea;
  selection-color: @onAccent; }
QMenu { background: @raised; color: @text; border: 1px solid @hairline; padding: 4px 0; }
QMenu::item { padding: 6px 24px 6px 16px; background: transparent; }
QMenu::item:selected { background: @accentArea; color: @onAccent; }
QMenu::item:disabled { color: @muted; }
QMenu::separator { height: 1px; background: @hairline; margin: 4px 0; }
QToolTip { background: @raised; color: @text; border: 1px solid @hairline; padding: 4px 8px; }
QScrollArea, QScrollArea > QWidget > QWidget { background: transparent; border: none; }
QScrollBar:vertical { background: transparent; width: 10px; margin: 2px; }
QScrollBar:horizontal { background: transparent; height: 10px; margin: 2px; }
QScrollBar::handle { background: @hairline; border-radius: 3px; min-height: 24px; min-width: 24px; }
QScrollBar::handle:hover { background: @muted; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QAbstractScrollArea::corner { background: transparent; border: none; }
QCheckBox, QRadioButton { spacing: 8px; }
QHeaderView { background: transparent; border: none; }
QHeaderView::section { background: transparent; color: @muted; border: none; border-bottom: 1px solid @hairline;
  padding: 6px 8px; }
QTableView, QTreeView, QListView, QPlainTextEdit, QTextEdit { background: @surface; color: @text;
  border: 1px solid @hairline; border-radius: 8px; gridline-color: @hairline; selection-background-color: @accentArea;
  selection-color: @onAccent; }
QTableView:focus, QTreeView:focus, QListView:focus, QPlainTextEdit:focus, QTextEdit:focus { border: 2px solid @accent; }
)";

}  // namespace

QString Theme::styleSheet() const {
  struct Name {
    const char* name;
    Role role;
  };
  // Longer names first where one begins another.
  constexpr Name kNames[] = {
      {"@surface", Role::surface},       {"@raised", Role::raised}, {"@hairline", Role::hairline},
      {"@track", Role::track},           {"@text", Role::text},     {"@muted", Role::muted},
      {"@accentArea", Role::accentArea}, {"@accent", Role::accent}, {"@onAccent", Role::onAccent}};
  QString sheet = QString::fromLatin1(kTemplate);
  for (const auto& [name, role] : kNames) sheet.replace(QLatin1String(name), color(role).name());
  return sheet;
}

}  // namespace kestrel
