#pragma once

#include <QString>

namespace kestrel {

/// Plain text as a tool tip shows it: nothing in it counts as markup, and long lines are broken.
QString toolTipText(const QString& plain);

}  // namespace kestrel
