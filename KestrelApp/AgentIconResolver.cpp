#include "KestrelApp/AgentIconResolver.h"

#include <QColor>
#include <QDirIterator>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <string_view>

#include "KestrelApp/Widgets/DisplayText.h"
#include "KestrelApp/Widgets/Icon.h"
#include "KestrelCore/Support/AtomicFile.h"
#include "KestrelCore/Support/RawValue.h"

namespace kestrel {
namespace {

/// More entries, or longer ones, are not looked at.
constexpr int kMaximumEntries = 2000;
constexpr std::size_t kMaximumEntryBytes = 256 * 1024;

struct DesktopEntry {
  QString name;
  QString icon;
  /// Its program, without the folder.
  QString program;
};

DesktopEntry readEntry(const QString& path) {
  DesktopEntry entry;
  const auto content = readWholeFile(path.toStdString(), kMaximumEntryBytes);
  std::string_view rest = content ? std::string_view(*content) : std::string_view();
  bool isInside = false;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.starts_with('[')) isInside = line.starts_with("[Desktop Entry]");
    const std::size_t equals = line.find('=');
    if (!isInside || equals == std::string_view::npos) continue;
    const std::string_view key = line.substr(0, equals);
    const QString value = displayText(line.substr(equals + 1)).trimmed();
    if (key == "Name") entry.name = value;
    if (key == "Icon") entry.icon = value;
    if (key == "Exec") entry.program = QFileInfo(value.section(u' ', 0, 0)).fileName();
  }
  return entry;
}

/// The user's own entries come before the system's.
QHash<QString, QString> readApplications() {
  QHash<QString, QString> icons;
  int count = 0;
  for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
    QDirIterator files(folder, {QStringLiteral("*.desktop")}, QDir::Files);
    while (files.hasNext() && ++count <= kMaximumEntries) {
      const QString path = files.next();
      const DesktopEntry entry = readEntry(path);
      if (entry.icon.isEmpty()) continue;
      for (const QString& name : {entry.name, entry.program, QFileInfo(path).completeBaseName()}) {
        const QString key = name.toLower();
        if (!key.isEmpty() && !icons.contains(key)) icons.insert(key, entry.icon);
      }
    }
  }
  return icons;
}

QIcon themeIcon(const QString& name) {
  return QFileInfo(name).isAbsolute() ? QIcon(name) : QIcon::fromTheme(name);
}

bool isUsable(const QIcon& icon) {
  return !icon.isNull() && !icon.pixmap(Theme::kIconSize).isNull();
}

}  // namespace

QIcon AgentIconResolver::agentIcon(AgentType agent, const Theme& theme) {
  const QColor hue = theme.series(agent);
  QIcon& icon = icons_[QStringLiteral("agent %1 %2").arg(displayText(rawValue(agent)), hue.name())];
  if (icon.isNull()) icon = makeIcon(kestrel::agentIcon(agent), hue);
  return icon;
}

QIcon AgentIconResolver::hostIcon(const QString& name, const Theme& theme) {
  const QColor drawn = theme.color(Theme::Role::muted);
  QIcon& icon = icons_[QStringLiteral("host %1 %2").arg(name, drawn.name())];
  if (icon.isNull()) icon = findHostIcon(name, theme);
  return icon;
}

QIcon AgentIconResolver::findHostIcon(const QString& name, const Theme& theme) {
  if (!applications_) applications_ = readApplications();
  const QString key = name.toLower();
  for (const QString& candidate : {applications_->value(key), key, QStringLiteral("utilities-terminal")}) {
    QIcon icon = candidate.isEmpty() ? QIcon() : themeIcon(candidate);
    if (isUsable(icon)) return icon;
  }
  return makeIcon(Icon::terminal, theme.color(Theme::Role::muted));
}

}  // namespace kestrel
