#include "KestrelApp/Widgets/ToolTipText.h"

namespace kestrel {

QString toolTipText(const QString& plain) {
  // A tool tip taller than the screen cannot be read.
  constexpr int kMaximumCharacters = 600;
  if (plain.isEmpty()) return {};
  QString html = plain.size() > kMaximumCharacters ? plain.left(kMaximumCharacters) + u'…' : plain;
  html = html.toHtmlEscaped();
  html.replace(u'\n', QStringLiteral("<br>"));
  return QStringLiteral("<qt>") + html + QStringLiteral("</qt>");
}

}  // namespace kestrel
