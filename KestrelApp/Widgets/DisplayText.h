#pragma once

#include <QString>
#include <string_view>

namespace kestrel {

/// The core's texts, which are UTF-8, for a widget.
inline QString displayText(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace kestrel
