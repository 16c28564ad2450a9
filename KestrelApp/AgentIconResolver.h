#pragma once

#include <QHash>
#include <QIcon>
#include <QString>
#include <optional>

#include "KestrelApp/Theme.h"

namespace kestrel {

/// Finds the icon of an agent family, or of the application that hosts a session. Each is looked for once.
/// Main thread.
class AgentIconResolver {
 public:
  /// Kestrel's own drawing in the family's hue.
  QIcon agentIcon(AgentType agent, const Theme& theme);
  /// The icon that the desktop shows for the application, else its icon for terminals, else a drawing.
  QIcon hostIcon(const QString& name, const Theme& theme);

 private:
  [[nodiscard]] QIcon findHostIcon(const QString& name, const Theme& theme);

  QHash<QString, QIcon> icons_;
  /// Names of icons by names of applications, in lower case; read when the first host is looked for.
  std::optional<QHash<QString, QString>> applications_;
};

}  // namespace kestrel
