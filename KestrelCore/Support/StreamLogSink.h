#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "KestrelCore/Platform/LogSink.h"
#include "KestrelCore/Support/Clock.h"

namespace kestrel {

enum class LogLineStyle {
  /// The local time of day: for somebody who watches.
  terminal,
  /// The instant in UTC: for a file.
  file,
};

/// Writes one line per record, without debug lines, to a descriptor that stays the caller's. A line of up to
/// PIPE_BUF bytes, to which messages are cut, is written whole also when several threads write.
std::shared_ptr<LogSink> makeStreamLogSink(int descriptor, LogLineStyle style,
                                           std::shared_ptr<const Clock> clock);

/// The message with control characters written out: texts from outside must neither begin a line of their own
/// nor steer a terminal.
std::string withoutControls(std::string_view message);

}  // namespace kestrel
